#include "Design/VisualEffect.h"

#include "Design/DesignSystem.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>

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
    if (m_blendingMode == BlendingMode::behindWindow)
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
    if (m_look.isCutOut)
        window()->setMask(outline(place, radius));
    else
        window()->clearMask();
    if (m_look.isBlurred) {
        const double scale = devicePixelRatio();
        X11::setBlurBehind(window()->winId(), outline(scaled(place, scale), qRound(radius * scale)));
    }
}

/// Outside, a line that sets the window off from one of the same colour; inside it the edge of the glass.
void VisualEffect::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(rect(), radiusOf(m_material), radiusOf(m_material));
    if (m_look.isCutOut)
        painter.fillRect(rect(), Palette::paper);
    else if (m_look.hasGround)
        painter.fillPath(path, QColor(Palette::paper));
    if (m_material == Material::window)
        return;
    painter.fillPath(path, QColor(Palette::glassScrim));
    // Twice as wide, and clipped: the half inside is left.
    painter.setClipPath(path);
    painter.strokePath(path, QPen(QColor(Palette::glassStroke), 3));
    painter.strokePath(path, QPen(QColor(Palette::line2), 2));
}

} // namespace torvane
