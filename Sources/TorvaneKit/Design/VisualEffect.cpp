#include "Design/VisualEffect.h"

#include "Design/DesignSystem.h"
#include "Design/RoundedRectangle.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWindow>

#include <algorithm>
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

/// On the glass, outside, a line that sets the window off from one of the same colour; inside it the edge of the glass,
/// a hairline.
QList<Coat> coats(const QColor& glass) {
    return {{0, 0, glass.rgba()}, {0, 1, QColor(Palette::line2).rgba()}, {1, 0.5, QColor(Palette::glassStroke).rgba()}};
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
    QList<QRect> rows;
    const auto append = [&](const QRect& row) {
        if (!row.isEmpty())
            rows.append(row);
    };
    for (int row = 0; row < rounded; ++row) {
        const int free = indent(rounded, row);
        append({rectangle.x() + free, rectangle.top() + row, rectangle.width() - 2 * free, 1});
    }
    append(rectangle.adjusted(0, rounded, 0, -rounded));
    for (int row = rounded - 1; row >= 0; --row) {
        const int free = indent(rounded, row);
        append({rectangle.x() + free, rectangle.bottom() - row, rectangle.width() - 2 * free, 1});
    }
    QRegion region; // At once: united one by one, each row would be compared with all before it.
    region.setRects(rows.constData(), static_cast<int>(rows.size()));
    return region;
}

BackdropLook backdropLook(BlendingMode mode, bool isX11, const X11::Compositing& compositing) {
    if (mode == BlendingMode::withinWindow)
        return {true, false, false};
    const bool cornersMayBeTransparent = !isX11 || compositing.isRunning;
    const bool isBlurred = compositing.isRunning && compositing.blursBehind;
    return {!isBlurred, isBlurred, !cornersMayBeTransparent};
}

VisualEffect::VisualEffect(Material material, BlendingMode blendingMode, QWidget* parent,
                           const X11::Compositing& compositing)
    : QWidget(parent)
    , m_material(material)
    , m_blendingMode(blendingMode) {
    adapt(compositing);
}

void VisualEffect::setMaterial(Material material) {
    if (material == m_material)
        return;
    m_material = material;
    adapt(X11::compositing());
}

void VisualEffect::setBlendingMode(BlendingMode mode) {
    if (mode == m_blendingMode)
        return;
    m_blendingMode = mode;
    adapt(X11::compositing());
}

void VisualEffect::adapt(const X11::Compositing& compositing) {
    m_look = backdropLook(m_blendingMode, X11::isRunning(), compositing);
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
    if (m_look.isCutOut) { // By whole pixels: what the round corners leave of them is glass too.
        const QRect upright = rect().adjusted(0, popoverRadius, 0, -popoverRadius);
        const QRect level = rect().adjusted(popoverRadius, 0, -popoverRadius, 0);
        for (const QRect& corner : QRegion(rect()) - upright - level)
            painter.fillRect(corner, glass);
    }
    paintRoundedRectangle(painter, rect(), popoverRadius, coats(glass));
}

} // namespace torvane
