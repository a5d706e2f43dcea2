#include "Views/ChartRaster.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace torvane {

namespace {

/// How much of each pixel is covered, 0 to 1, row by row.
class Coverage final {
public:
    explicit Coverage(QSize size)
        : m_size(size)
        , m_values(static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height())) {}

    QSize size() const { return m_size; }
    float& at(int x, int y) { return row(y)[x]; }
    float* row(int y) { return m_values.data() + static_cast<std::ptrdiff_t>(y) * m_size.width(); }

    /// The pixels whose middles may lie within `reach` of a span, cut off at the edges.
    static std::pair<int, int> pixels(double from, double to, double reach, int end) {
        const auto [low, high] = std::minmax(from, to);
        return {std::clamp(static_cast<int>(std::floor(low - reach)), 0, end),
                std::clamp(static_cast<int>(std::ceil(high + reach)), 0, end)};
    }

private:
    QSize m_size;
    std::vector<float> m_values;
};

/// All that lies within half the width of a segment; its edge is as soft as a pixel is wide.
void addSegment(Coverage& line, QPointF from, QPointF to, double halfWidth) {
    const double reach = halfWidth + 0.5;
    const QPointF along = to - from;
    const double length2 = std::max(QPointF::dotProduct(along, along), 1e-12);
    const auto [left, right] = Coverage::pixels(from.x(), to.x(), reach, line.size().width());
    const auto [top, bottom] = Coverage::pixels(from.y(), to.y(), reach, line.size().height());
    for (int y = top; y < bottom; ++y) {
        float* const row = line.row(y);
        for (int x = left; x < right; ++x) {
            const QPointF offset = QPointF(x + 0.5, y + 0.5) - from;
            const double part = std::clamp(QPointF::dotProduct(offset, along) / length2, 0.0, 1.0);
            const QPointF across = offset - part * along;
            const double distance2 = QPointF::dotProduct(across, across);
            if (distance2 < reach * reach)
                row[x] = std::max(row[x], static_cast<float>(std::min(reach - std::sqrt(distance2), 1.0)));
        }
    }
}

/// What lies below the line, column by column: where it bends within a column, the line hides it.
void addArea(Coverage& area, const QList<QPointF>& points) {
    const auto [left, right] = Coverage::pixels(points.first().x(), points.last().x(), 0, area.size().width());
    qsizetype next = 1;
    for (int x = left; x < right; ++x) {
        while (next < points.size() - 1 && points[next].x() < x + 0.5)
            ++next;
        const QPointF step = points[next] - points[next - 1];
        const double part = step.x() > 0 ? std::clamp((x + 0.5 - points[next - 1].x()) / step.x(), 0.0, 1.0) : 0;
        const double edge = points[next - 1].y() + part * step.y();
        const double breadth = std::min(x + 1.0, points.last().x()) - std::max<double>(x, points.first().x());
        for (int y = std::max(0, static_cast<int>(std::floor(edge))); y < area.size().height(); ++y)
            area.at(x, y) = static_cast<float>(breadth * std::min(y + 1 - edge, 1.0));
    }
}

/// The line lies upon the area: what it leaves free is the area's.
QImage inked(Coverage& line, Coverage& area, const ChartInk& ink) {
    QImage image(line.size(), QImage::Format_ARGB32_Premultiplied);
    const QRgb color = ink.color.rgb();
    for (int y = 0; y < image.height(); ++y) {
        auto* const pixels = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const double covered = line.at(x, y) + (1 - line.at(x, y)) * area.at(x, y) * ink.areaOpacity;
            const auto alpha = static_cast<int>(std::lround(covered * 255));
            pixels[x] = qPremultiply(qRgba(qRed(color), qGreen(color), qBlue(color), alpha));
        }
    }
    return image;
}

} // namespace

QImage chartRaster(const QList<QPointF>& points, QSizeF box, double scale, const ChartInk& ink) {
    const QSize size = (box * scale).toSize();
    Coverage line(size);
    Coverage area(size);
    QList<QPointF> pixels = points;
    for (QPointF& point : pixels)
        point *= scale;
    if (!pixels.isEmpty())
        addArea(area, pixels);
    for (qsizetype i = 1; i < pixels.size(); ++i)
        addSegment(line, pixels[i - 1], pixels[i], ink.lineWidth * scale / 2);
    QImage image = inked(line, area, ink);
    image.setDevicePixelRatio(scale);
    return image;
}

} // namespace torvane
