#pragma once

#include "Design/DesignSystem.h"

#include <QLabel>

namespace torvane {

/// A plain text in a colour of the palette, faded where its row is disabled. Where it is too long it wraps at words,
/// or it ends in an ellipsis, and its tool tip has all of it.
class TextLabel final : public QLabel {
    Q_OBJECT

public:
    TextLabel(const QString& text, const QFont& font, const DynamicColor& color, QWidget* parent = nullptr);

    /// One line, however narrow: for texts of any length.
    void elide();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    DynamicColor m_color;
};

} // namespace torvane
