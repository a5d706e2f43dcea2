#include "Views/FocusRing.h"

#include "Design/DesignSystem.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QProxyStyle>

namespace torvane {

namespace {

constexpr int reach = 3; ///< how far the ring reaches beyond the control
constexpr double thickness = 1.5;
constexpr double radius = 9;

/// A focus frame's size is the style's to say.
class Style final : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        const bool isReach = metric == PM_FocusFrameHMargin || metric == PM_FocusFrameVMargin;
        return isReach ? reach : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

} // namespace

FocusRing::FocusRing(QWidget* window)
    : QFocusFrame(window)
    , m_window(window) {
    auto* style = new Style;
    style->setParent(this);
    setStyle(style);
    hide();
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
    qApp->installEventFilter(this);
}

void FocusRing::follow(QWidget* focused) {
    const bool isOurs = focused && m_window->isAncestorOf(focused);
    setWidget(m_isByKey && isOurs ? focused : nullptr);
    setVisible(widget());
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
    const bool isKey = event->type() == QEvent::KeyPress;
    if (isKey || event->type() == QEvent::MouseButtonPress) {
        const bool changes = isKey != m_isByKey;
        m_isByKey = isKey;
        if (changes)
            follow(QApplication::focusWidget());
    }
    return QFocusFrame::eventFilter(watched, event);
}

void FocusRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(Palette::ink2), thickness));
    constexpr double inset = thickness / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

} // namespace torvane
