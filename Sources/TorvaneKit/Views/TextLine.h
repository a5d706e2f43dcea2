#pragma once

#include "Design/DesignSystem.h"
#include "Views/AccessiblePart.h"
#include "Views/TextRun.h"

#include <QWidget>

#include <optional>

namespace torvane {

/// The colour that is the same in both appearances.
DynamicColor always(const QColor& color);

/// How a line of text is set.
struct TextStyle {
    QFont font;
    DynamicColor color;
    int height;                       ///< of the line, in device-independent pixels
    std::optional<int> baseline = {}; ///< from the line's top; centred without it
    Qt::Alignment alignment = Qt::AlignLeft;
};

/// A line of text. It gives way when there is less room than it wants: then it ends in "…" and the whole of it is its
/// tool tip. Assistive technology reads all of it.
class TextLine : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    explicit TextLine(const TextStyle& style, const QString& text = {}, QWidget* parent = nullptr);

    QString text() const { return m_run.text(); }

    /// `shorter` stands in its place where the text does not fit; there is always room for it.
    void setText(const QString& text, const QString& shorter = {});

    void setColor(const DynamicColor& color);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isCut() const;

    TextStyle m_style;
    TextRun m_run;
    TextRun m_shorter;
};

} // namespace torvane
