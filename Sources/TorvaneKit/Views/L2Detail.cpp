#include "Views/L2Detail.h"

#include "Views/Card.h"
#include "Views/ChartView.h"
#include "Views/Composition.h"
#include "Views/FigureLine.h"
#include "Views/HiddenText.h"

namespace torvane {

namespace {

constexpr int sidePadding = 10;
constexpr int padding = 9;
constexpr int figureBaseline = 19;
constexpr QSize chartSize(296, 34);

} // namespace

L2Detail::L2Detail(QWidget* parent)
    : QWidget(parent)
    , m_label(Fonts::sans(13, QFont::DemiBold), Fonts::sans(10.5, QFont::Medium))
    , m_figure(new FigureLine(Fonts::mono(18, QFont::Medium), Fonts::mono(10.5, QFont::Normal),
                              static_cast<int>(NetworkLabel::height), figureBaseline))
    , m_chart(
          new ChartView(chartSize, QStringLiteral("no history yet · the relay starts a 24h series on its next runs"))) {
    installAccessibility();
    setLayout(padded({sidePadding, padding, sidePadding, padding}, column(row(stretch, m_figure), Space{6}, m_chart)));
}

void L2Detail::setNetwork(const L2Entry& entry, const Figure& figure) {
    m_figure->setFigure(figure);
    const std::optional<ChartHistory> history = Format::chartHistory(BadgeChain::l2(entry.name), {}, {entry});
    m_chart->setChart(history ? history->heading : QString(), history);
    m_status = entry.status;
    if (!m_label.set(entry.name, entry.status))
        return;
    tellAccessibleName(*this, entry.name + QStringLiteral(", ") + entry.status);
    update();
}

double L2Detail::labelRoom() const {
    return std::max(NetworkLabel::textStart, m_figure->x() - 2.0 * sidePadding);
}

bool L2Detail::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        showHiddenText(*event, m_label.isNameCut(labelRoom()) ? m_label.name() : QString(), *this);
        return true;
    }
    return QWidget::event(event);
}

void L2Detail::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintCard(painter, rect());
    m_label.paint(painter, {sidePadding, padding}, labelRoom(), l2StatusColor(m_status));
}

} // namespace torvane
