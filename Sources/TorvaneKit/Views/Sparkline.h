#pragma once

#include "Views/AccessiblePart.h"
#include "Views/CachedDrawing.h"

#include <QList>
#include <QPainterPath>
#include <QWidget>

namespace torvane {

/// A small line chart of a series, oldest first. It shares the series with the caller; one of fewer than two values
/// draws nothing, one of very many is thinned for drawing.
class Sparkline final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    explicit Sparkline(QWidget* parent = nullptr);

    /// Takes another series, whose name is what assistive technology calls the chart.
    void setSeries(const QString& heading, const QList<double>& values);

    const QList<double>& values() const { return m_values; }

    /// The series within a box, inset by 3 on every side: evenly spaced, the largest value on top, a flat series along
    /// the bottom. No points of fewer than two values.
    static QList<QPointF> points(const QList<double>& values, QSizeF box);

    /// A series that takes no longer to draw than one of `mostDrawn` values, and looks the same: of each stretch of a
    /// longer one its lowest and its highest value, in their order, and the first and the last of all.
    static QList<double> thinned(const QList<double>& values);

    static constexpr qsizetype mostDrawn = 3000; ///< several for each pixel of a fine screen

    /// Straight lines through the points.
    static QPainterPath line(const QList<QPointF>& points);

    /// What lies between the points and the bottom edge of a box of this height.
    static QPainterPath area(const QList<QPointF>& points, double height);

    QAccessible::Role accessibleRole() const override { return QAccessible::Chart; }
    std::optional<AccessibleRange> accessibleRange() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_heading;
    QList<double> m_values;
    QList<double> m_drawn; ///< thinned; mostly the same
    CachedDrawing<QList<double>> m_drawing;
};

} // namespace torvane
