#pragma once

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <concepts>
#include <cstdlib>

/// Helpers for tests that look at what was painted.
namespace torvane {

/// What `draw(QPainter&)` paints upon nothing, `side` pixels square.
template <std::invocable<QPainter&> Draw>
QImage drawn(int side, Draw draw) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    draw(painter);
    return image;
}

/// How many pixels fulfil `holds(QRgb)`, premultiplied.
template <std::predicate<QRgb> Condition>
int countPixels(const QImage& image, Condition holds) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        count += static_cast<int>(std::count_if(line, line + image.width(), holds));
    }
    return count;
}

inline bool isBlank(const QImage& image) {
    return countPixels(image, [](QRgb pixel) { return pixel != 0; }) == 0;
}

/// Of two pictures of one size: how many pixels an eye tells apart, by a channel of theirs or by their opacity.
inline int visibleDifference(const QImage& left, const QImage& right) {
    constexpr int justVisible = 64;
    const auto differs = [](int a, int b) { return std::abs(a - b) > justVisible; };
    int count = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb a = left.pixel(x, y);
            const QRgb b = right.pixel(x, y);
            const bool different = differs(qRed(a), qRed(b)) || differs(qGreen(a), qGreen(b)) ||
                                   differs(qBlue(a), qBlue(b)) || differs(qAlpha(a), qAlpha(b));
            count += different ? 1 : 0;
        }
    }
    return count;
}

} // namespace torvane
