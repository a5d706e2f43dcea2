#pragma once

#include "Views/AccessiblePart.h"
#include "Views/TextRun.h"

#include <QWidget>

namespace torvane {

/// A figure and its unit, apart because they are set apart.
struct Figure {
    QString value;
    QString unit; ///< may be empty

    /// Takes apart what Format has joined: "0.01 gwei".
    static Figure of(const QString& text);

    QString text() const;

    bool operator==(const Figure&) const = default;
};

/// A large figure with a small unit behind it, right-aligned on one baseline. One that is too long ends in "…" and has
/// the whole as its tool tip.
class FigureLine final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    /// `height` is the line's, `baseline` is counted from its top.
    FigureLine(const QFont& valueFont, const QFont& unitFont, int height, int baseline, QWidget* parent = nullptr);

    void setFigure(const Figure& figure);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override { return accessibleName(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    double unitWidth() const;
    double valueRoom() const;

    TextRun m_value;
    TextRun m_unit;
    int m_height;
    int m_baseline;
};

} // namespace torvane
