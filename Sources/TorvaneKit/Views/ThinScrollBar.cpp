#include "Views/ThinScrollBar.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionSlider>

#include <algorithm>

namespace torvane {

namespace {

constexpr int barWidth = 10;
constexpr int margin = 3;
constexpr int leastHandle = 32;

/// No arrow buttons: the handle has all of the bar's height.
class Style final : public QProxyStyle {
public:
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || !bar)
            return QProxyStyle::subControlRect(control, option, part, widget);
        const int room = bar->rect.height();
        const int range = bar->maximum - bar->minimum;
        const int handle = std::clamp(room * bar->pageStep / std::max(1, range + bar->pageStep), leastHandle, room);
        const int top = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, room - handle);
        switch (part) {
        case SC_ScrollBarSlider:
            return {0, top, bar->rect.width(), handle};
        case SC_ScrollBarSubPage:
            return {0, 0, bar->rect.width(), top};
        case SC_ScrollBarAddPage:
            return {0, top + handle, bar->rect.width(), room - top - handle};
        case SC_ScrollBarGroove:
            return bar->rect;
        default:
            return {};
        }
    }
};

} // namespace

ThinScrollBar::ThinScrollBar(QWidget* parent)
    : QScrollBar(Qt::Vertical, parent) {
    auto* style = new Style;
    style->setParent(this);
    setStyle(style);
    setAttribute(Qt::WA_OpaquePaintEvent, false); // What it scrolls shows through.
}

QSize ThinScrollBar::sizeHint() const {
    return {barWidth, QScrollBar::sizeHint().height()};
}

void ThinScrollBar::paintEvent(QPaintEvent*) {
    if (minimum() == maximum())
        return;
    QStyleOptionSlider option;
    initStyleOption(&option);
    // Where the style has it, since that is where the style lets it be dragged.
    const QRect handle = style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    QPainter painter(this);
    const QRect thin = handle.adjusted(margin, margin, -margin, -margin);
    fillRoundedRect(painter, thin, thin.width() / 2.0, isSliderDown() ? Palette::ink3 : Palette::ink4);
}

} // namespace torvane
