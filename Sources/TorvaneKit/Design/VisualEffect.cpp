#include "Design/VisualEffect.h"

#include "Design/DesignSystem.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWindow>

#include <algorithm>
#include <array>
#include <cmath>

namespace torvane {

namespace {

constexpr int popoverRadius = 12;

int radiusOf(Material material) {
    return material == Material::popover ? popoverRadius : 0;
}

/// How far a quarter circle of this radius leaves a row of pixels free, to the nearest pixel.
int indent(int radius, int row) {
    const double height = radius - row - 0.5;
    return static_cast<int>(std::lround(radius - std::sqrt(radius * radius - height * height)));
}

QPainterPath rounded(const QRectF& rectangle, double radius) {
    QPainterPath path;
    path.addRoundedRect(rectangle, radius, radius);
    return path;
}

/// A line of this width along the inside of a rectangle with round corners.
QPainterPath ring(const QRectF& rectangle, double radius, double width) {
    QPainterPath path = rounded(rectangle, radius);
    path.addPath(rounded(rectangle.adjusted(width, width, -width, -width), radius - width));
    return path; // Filled by the odd-even rule, which is a path's own.
}

/// A line of the popover's edge.
struct EdgeLine {
    double inset;
    double width;
    QColor color;
};

/// Outside, a line that sets the window off from one of the same colour; inside it the edge of the glass, a hairline.
std::array<EdgeLine, 2> edgeLines() {
    return {{{0, 1, Palette::line2}, {1, 0.5, Palette::glassStroke}}};
}

void paintWholeEdge(QPainter& painter, const QRectF& rectangle) {
    for (const auto& [inset, width, color] : edgeLines())
        painter.fillPath(ring(rectangle.adjusted(inset, inset, -inset, -inset), popoverRadius - inset, width), color);
}

/// As much of the straight lines as reaches into a part of the window.
void paintStraightEdge(QPainter& painter, const QRectF& rectangle, const QRectF& part) {
    for (const auto& [inset, width, color] : edgeLines()) {
        const QRectF outer = rectangle.adjusted(inset, inset, -inset, -inset);
        const QRectF inner = outer.adjusted(width, width, -width, -width);
        for (const QRectF& line :
             {QRectF(outer.topLeft(), inner.bottomLeft()), QRectF(inner.topRight(), outer.bottomRight()),
              QRectF(outer.topLeft(), inner.topRight()), QRectF(inner.bottomLeft(), outer.bottomRight())}) {
            if (line.intersects(part))
                painter.fillRect(line, color);
        }
    }
}

/// Piece by piece: Qt hands what has about a hundred rows of pixels to other threads and waits for them, which takes
/// far longer than filling them.
void paintSide(QPainter& painter, const QRect& rectangle, const QRect& side) {
    constexpr int pieceHeight = 32;
    for (int top = side.top(); top <= side.bottom(); top += pieceHeight) {
        const QRect piece = QRect(side.left(), top, side.width(), pieceHeight) & side;
        painter.setClipRect(piece);
        paintStraightEdge(painter, rectangle, piece);
    }
}

/// A smaller rectangle with the same corner.
QRect smallAround(const QRect& corner, const QRect& rectangle) {
    return corner.adjusted(-2 * popoverRadius, -2 * popoverRadius, 2 * popoverRadius, 2 * popoverRadius) & rectangle;
}

/// Only the corners are worth a path, which takes its time with every row that it crosses. But where the lines cover
/// odd parts of pixels, paths and rectangles round these differently.
void paintEdge(QPainter& painter, const QRect& rectangle, const QRect& exposed) {
    const double halves = 2 * painter.deviceTransform().m11();
    if (halves != std::floor(halves)) {
        paintWholeEdge(painter, rectangle);
        return;
    }
    const QRect upright = rectangle.adjusted(0, popoverRadius, 0, -popoverRadius);
    const QRect level = rectangle.adjusted(popoverRadius, 0, -popoverRadius, 0);
    for (const QRect& rounded : QRegion(rectangle) - upright - level) {
        if (!rounded.intersects(exposed))
            continue;
        painter.setClipRect(rounded);
        paintWholeEdge(painter, smallAround(rounded, rectangle));
    }
    for (const QRect& side : (QRegion(upright) ^ level) & exposed)
        paintSide(painter, rectangle, side);
    painter.setClipping(false);
}

/// A translucent colour upon an opaque one.
QColor blended(const QColor& over, const QColor& below) {
    const float opacity = over.alphaF();
    const auto mix = [opacity](float a, float b) { return a * opacity + b * (1 - opacity); };
    return QColor::fromRgbF(mix(over.redF(), below.redF()), mix(over.greenF(), below.greenF()),
                            mix(over.blueF(), below.blueF()));
}

QRect scaled(const QRect& rectangle, double scale) {
    return QRectF(QPointF(rectangle.topLeft()) * scale, QSizeF(rectangle.size()) * scale).toAlignedRect();
}

} // namespace

QRegion VisualEffect::outline(const QRect& rectangle, int radius) {
    const int rounded = std::min({radius, rectangle.width() / 2, rectangle.height() / 2});
    QRegion region(rectangle.adjusted(0, rounded, 0, -rounded));
    for (int row = 0; row < rounded; ++row) {
        const int free = indent(rounded, row);
        region += QRect(rectangle.x() + free, rectangle.top() + row, rectangle.width() - 2 * free, 1);
        region += QRect(rectangle.x() + free, rectangle.bottom() - row, rectangle.width() - 2 * free, 1);
    }
    return region;
}

BackdropLook backdropLook(BlendingMode mode, bool isX11, const X11::Compositing& compositing) {
    if (mode == BlendingMode::withinWindow)
        return {true, false, false};
    const bool cornersMayBeTransparent = !isX11 || compositing.isRunning;
    const bool isBlurred = compositing.isRunning && compositing.blursBehind;
    return {!isBlurred, isBlurred, !cornersMayBeTransparent};
}

VisualEffect::VisualEffect(Material material, BlendingMode blendingMode, QWidget* parent)
    : QWidget(parent)
    , m_material(material)
    , m_blendingMode(blendingMode) {
    adapt();
}

void VisualEffect::setMaterial(Material material) {
    if (material == m_material)
        return;
    m_material = material;
    adapt();
}

void VisualEffect::setBlendingMode(BlendingMode mode) {
    if (mode == m_blendingMode)
        return;
    m_blendingMode = mode;
    adapt();
}

void VisualEffect::adapt() {
    m_look = backdropLook(m_blendingMode, X11::isRunning(), X11::compositing());
    if (m_blendingMode == BlendingMode::behindWindow && !m_look.isCutOut)
        window()->setAttribute(Qt::WA_TranslucentBackground);
    shapeWindow();
    update();
}

bool VisualEffect::event(QEvent* event) {
    const bool result = QWidget::event(event);
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
        shapeWindow();
    return result;
}

/// Nothing that a window without a native one could have; it gets its shape when it is shown.
void VisualEffect::shapeWindow() {
    if (!window()->windowHandle() || size().isEmpty())
        return;
    const QRect place(mapTo(window(), QPoint()), size());
    const int radius = radiusOf(m_material);
    // Of the native window alone: clipped to so many rectangles, the widgets would take twice as long to paint.
    window()->windowHandle()->setMask(m_look.isCutOut ? outline(place, radius) : QRegion());
    const double scale = devicePixelRatio();
    X11::setBlurBehind(window()->winId(),
                       m_look.isBlurred ? outline(scaled(place, scale), qRound(radius * scale)) : QRegion());
}

void VisualEffect::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QColor ground = Palette::paper;
    if (m_material == Material::window) {
        painter.fillRect(event->rect(), ground);
        return;
    }
    const QColor glass = m_look.hasGround ? blended(Palette::glassScrim, ground) : QColor(Palette::glassScrim);
    // Only the rows with round corners are worth a path; what is cut out of the window needs none.
    const QRect middle = rect().adjusted(0, popoverRadius, 0, -popoverRadius);
    painter.fillRect((m_look.isCutOut ? rect() : middle) & event->rect(), glass);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!m_look.isCutOut) {
        painter.setClipRegion(QRegion(rect()) - middle);
        painter.fillPath(rounded(rect(), popoverRadius), glass);
        painter.setClipping(false);
    }
    paintEdge(painter, rect(), event->rect());
}

} // namespace torvane
