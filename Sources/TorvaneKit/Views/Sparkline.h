#pragma once

#include "Views/AccessiblePart.h"
#include "Views/CachedDrawing.h"

#include <QList>
#include <QPainterPath>
#include <QWidget>

namespace torvane {

/// A small line chart of a series, oldest first. It shares the series with the caller and copies none of it; one of
/// fewer than two values draws nothing.
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
    CachedDrawing<QList<double>> m_drawing;
};

} // namespace torvane
