#include "Views/ProgressBar.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

constexpr int thickness = 6;
constexpr int usualLength = 200;

} // namespace

ProgressBar::ProgressBar(const QString& name, QWidget* parent)
    : QWidget(parent) {
    installAccessibility();
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ProgressBar::setFraction(double fraction) {
    const int pixelsBefore = filledPixels();
    const int percentBefore = percent();
    m_fraction = fraction > 0 ? std::min(fraction, 1.0) : 0; // Not a number is not above 0.
    if (filledPixels() != pixelsBefore)
        update();
    if (percent() == percentBefore)
        return;
    QAccessibleValueChangeEvent event(this, percent());
    QAccessible::updateAccessibility(&event);
}

/// Rounded down: the whole is there only when all of it is.
int ProgressBar::percent() const {
    return static_cast<int>(std::floor(m_fraction * 100));
}

/// Of the screen.
int ProgressBar::filledPixels() const {
    return static_cast<int>(std::floor(m_fraction * width() * devicePixelRatioF()));
}

QSize ProgressBar::sizeHint() const {
    return {usualLength, thickness};
}

QString ProgressBar::accessibleValue() const {
    return QString::number(percent()) + u'%';
}

std::optional<AccessibleRange> ProgressBar::accessibleRange() const {
    return AccessibleRange{0, 100, static_cast<double>(percent())};
}

void ProgressBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath track;
    track.addRoundedRect(rect(), height() / 2.0, height() / 2.0);
    painter.fillPath(track, QColor(Palette::surface3));
    const double length = filledPixels() / devicePixelRatioF();
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    painter.setClipRect(QRectF(isMirrored ? width() - length : 0, 0, length, height()));
    painter.fillPath(track, QColor(Palette::accent));
}

} // namespace torvane
