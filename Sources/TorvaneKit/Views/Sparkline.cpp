#include "Views/Sparkline.h"

#include "Model/Format.h"
#include "Views/ChartRaster.h"

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

constexpr double inset = 3;
constexpr double lineWidth = 1.5;
constexpr double areaOpacity = 0.12;

void draw(QPainter& painter, const QRectF& box, const QList<double>& values) {
    const ChartInk ink{Palette::ink2, lineWidth, areaOpacity};
    const double scale = painter.deviceTransform().m11();
    painter.drawImage(box.topLeft(), chartRaster(Sparkline::points(values, box.size()), box.size(), scale, ink));
}

/// What the eye takes from a chart, in words.
QString description(const QString& heading, const QList<double>& values) {
    const auto [low, high] = std::minmax_element(values.cbegin(), values.cend());
    return QStringLiteral("%1: lowest %2 gwei, highest %3 gwei, latest %4 gwei")
        .arg(heading, Format::gwei(*low), Format::gwei(*high), Format::gwei(values.last()));
}

} // namespace

Sparkline::Sparkline(QWidget* parent)
    : QWidget(parent) {
    installAccessibility();
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Sparkline::setSeries(const QString& heading, const QList<double>& values) {
    if (heading == m_heading && values == m_values)
        return;
    const bool isRedrawn = values != m_values;
    m_heading = heading;
    m_values = values;
    m_drawn = thinned(values);
    tellAccessibleName(*this, values.isEmpty() ? QString() : description(heading, values));
    if (!isRedrawn)
        return;
    m_drawing.invalidate();
    update();
}

QList<QPointF> Sparkline::points(const QList<double>& values, QSizeF box) {
    if (values.size() < 2)
        return {};
    const auto [low, high] = std::minmax_element(values.cbegin(), values.cend());
    // The span of two numbers can be larger than any number; that of their halves cannot.
    const double unit = std::isfinite(*high - *low) ? 1 : 0.5;
    const double least = *low * unit;
    const double span = *high * unit - least;
    const double range = span == 0 ? 1 : span;
    const auto last = static_cast<double>(values.size() - 1);
    QList<QPointF> points;
    points.reserve(values.size());
    for (qsizetype i = 0; i < values.size(); ++i) {
        const double height = (values[i] * unit - least) / range;
        points.append({inset + (box.width() - 2 * inset) * static_cast<double>(i) / last,
                       inset + (box.height() - 2 * inset) * (1 - height)});
    }
    return points;
}

QList<double> Sparkline::thinned(const QList<double>& values) {
    if (values.size() <= mostDrawn)
        return values;
    constexpr qsizetype stretches = mostDrawn / 2 - 1;
    const qsizetype inner = values.size() - 2;
    QList<double> kept{values.first()};
    kept.reserve(mostDrawn);
    for (qsizetype i = 0; i < stretches; ++i) {
        const auto begin = values.cbegin() + 1;
        const auto [low, high] =
            std::minmax_element(begin + inner * i / stretches, begin + inner * (i + 1) / stretches);
        kept.append(*std::min(low, high));
        kept.append(*std::max(low, high));
    }
    kept.append(values.last());
    return kept;
}

QPainterPath Sparkline::line(const QList<QPointF>& points) {
    QPainterPath path;
    if (points.isEmpty())
        return path;
    path.reserve(static_cast<int>(points.size()));
    path.moveTo(points.first());
    for (qsizetype i = 1; i < points.size(); ++i)
        path.lineTo(points[i]);
    return path;
}

QPainterPath Sparkline::area(const QList<QPointF>& points, double height) {
    QPainterPath path;
    if (points.isEmpty())
        return path;
    path.reserve(static_cast<int>(points.size()) + 3);
    path.moveTo(points.first().x(), height);
    for (const QPointF& point : points)
        path.lineTo(point);
    path.lineTo(points.last().x(), height);
    path.closeSubpath();
    return path;
}

std::optional<AccessibleRange> Sparkline::accessibleRange() const {
    if (m_values.isEmpty())
        return std::nullopt;
    const auto [low, high] = std::minmax_element(m_values.cbegin(), m_values.cend());
    return AccessibleRange{*low, *high, m_values.last()};
}

void Sparkline::paintEvent(QPaintEvent*) {
    if (m_values.size() < 2)
        return;
    QPainter painter(this);
    m_drawing.paint(painter, QRectF(rect()), m_drawn,
                    [this](QPainter& drawing, const QRectF& box) { draw(drawing, box, m_drawn); });
}

} // namespace torvane
