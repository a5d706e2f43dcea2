#include "Design/VisualEffect.h"

#include "Design/DesignSystem.h"

#include <QEvent>
#include <QPainter>

namespace torvane {

namespace {

constexpr double popoverRadius = 12;

QRegion region(const QPainterPath& path, double scale) {
    return QRegion(path.toFillPolygon(QTransform::fromScale(scale, scale)).toPolygon());
}

} // namespace

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

QPainterPath VisualEffect::outline(Material material, const QSizeF& size) {
    const double radius = material == Material::popover ? popoverRadius : 0;
    QPainterPath path;
    path.addRoundedRect(QRectF(QPointF(), size), radius, radius);
    return path;
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
    const QPoint origin = mapTo(window(), QPoint());
    const QPainterPath path = outline(m_material, size()).translated(origin);
    if (m_look.isCutOut)
        window()->setMask(region(path, 1));
    else
        window()->clearMask();
    if (m_look.isBlurred)
        X11::setBlurBehind(window()->winId(), region(path, devicePixelRatio()));
}

/// Outside, a line that sets the window off from one of the same colour; inside it the edge of the glass.
void VisualEffect::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath path = outline(m_material, size());
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
