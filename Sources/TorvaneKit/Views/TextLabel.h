#pragma once

#include "Design/DesignSystem.h"

#include <QLabel>

namespace torvane {

/// A plain text in a colour of the palette, faded where its row is disabled. Wraps at words where it is too long.
class TextLabel final : public QLabel {
    Q_OBJECT

public:
    TextLabel(const QString& text, const QFont& font, const DynamicColor& color, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    DynamicColor m_color;
};

} // namespace torvane
