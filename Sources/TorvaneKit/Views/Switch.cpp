#include "Views/Switch.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"

#include <QPainter>
#include <QPainterPath>

namespace torvane {

namespace {

constexpr QSize trackSize{34, 20};
constexpr double knobInset = 2;
constexpr double knobSize = 16;

} // namespace

Switch::Switch(const QString& name, QWidget* parent)
    : QAbstractButton(parent) {
    setCheckable(true);
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Switch::sizeHint() const {
    return trackSize;
}

void Switch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacityOf(*this));
    painter.setPen(Qt::NoPen);
    const bool isRight = isChecked() != (layoutDirection() == Qt::RightToLeft);
    const double left = isRight ? width() - knobInset - knobSize : knobInset;
    QPainterPath knob;
    knob.addEllipse(left, knobInset, knobSize, knobSize);
    QPainterPath track;
    track.addRoundedRect(rect(), height() / 2.0, height() / 2.0);
    // Without what the knob covers: faded, it would shine through.
    painter.fillPath(isEnabled() ? track : track.subtracted(knob), isChecked() ? QColor(Palette::pos) : Palette::line2);
    if (isEnabled()) {
        painter.setBrush(shadow(0.22));
        painter.drawEllipse(QRectF(left - 0.25, knobInset + 0.25, knobSize + 0.5, knobSize + 0.75));
    }
    painter.fillPath(knob, Palette::surface.in(Appearance::light)); // White in either appearance, as switches are.
}

} // namespace torvane
