#pragma once

#include "Design/DesignSystem.h"
#include "Views/AccessiblePart.h"

#include <QLabel>

namespace torvane {

/// A plain text in a colour of the palette, faded where its row is disabled, as wide as its place: it wraps at words
/// where it is too long. Where the width is known beforehand there is Paragraph.
class TextLabel final : public QLabel, public AccessiblePart {
    Q_OBJECT

public:
    TextLabel(const QString& text, const QFont& font, const DynamicColor& color,
              QAccessible::Role role = QAccessible::StaticText);

    QAccessible::Role accessibleRole() const override { return m_role; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    DynamicColor m_color;
    QAccessible::Role m_role;
};

} // namespace torvane
