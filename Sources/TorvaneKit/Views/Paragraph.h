#pragma once

#include "Views/TextLine.h"

namespace torvane {

/// A text of as many lines as it needs within a fixed width, each of the height given: its own height is known at once,
/// while TextLabel, which has whatever width its place has, learns it in the layout.
class Paragraph final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    Paragraph(const TextStyle& style, int width, const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QList<TextRun>& lines() const;

    TextStyle m_style;
    QString m_text;
    int m_width;
    mutable QList<TextRun> m_lines; // None before they are needed: most paragraphs are never seen.
};

} // namespace torvane
