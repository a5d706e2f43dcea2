#include "Views/ChartView.h"

#include "Model/Format.h"
#include "Views/Composition.h"
#include "Views/Paragraph.h"
#include "Views/Sparkline.h"
#include "Views/TextLine.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr int lineHeight = 14;
constexpr int columnGap = 10;

/// The mean of values between these two; without the sum of all, which could be larger than any number.
double average(const QList<double>& values, double low, double high) {
    double mean = 0;
    for (const double value : values)
        mean += value / static_cast<double>(values.size());
    return std::clamp(mean, low, high);
}

} // namespace

ChartView::ChartView(QSize chartSize, const QString& placeholder, QWidget* parent)
    : QWidget(parent)
    , m_width(chartSize.width())
    , m_heading(new TextLine({Fonts::label(), Palette::ink3, lineHeight}))
    , m_caption(new TextLine({Fonts::label(), Palette::ink3, lineHeight, {}, Qt::AlignRight}))
    , m_sparkline(new Sparkline)
    , m_placeholder(new Paragraph({Fonts::sans(10.5, QFont::Normal), Palette::ink3, lineHeight}, chartSize.width(),
                                  placeholder)) {
    m_sparkline->setFixedHeight(chartSize.height());
    m_caption->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // It has what the heading leaves.
    setLayout(column(row(m_heading, Space{columnGap}, m_caption), Space{5}, m_sparkline, m_placeholder));
}

void ChartView::setChart(const QString& heading, const std::optional<ChartHistory>& history) {
    m_heading->setText(heading);
    m_caption->setText(history ? caption(*history) : QString(), history ? range(*history) : QString());
    m_heading->setFixedWidth(
        std::min(m_heading->sizeHint().width(), m_width - columnGap - m_caption->minimumSizeHint().width()));
    m_heading->setVisible(!heading.isEmpty());
    m_caption->setVisible(!heading.isEmpty());
    m_sparkline->setSeries(heading, history ? history->values : QList<double>());
    m_sparkline->setVisible(history.has_value());
    m_placeholder->setVisible(!history.has_value());
}

QString ChartView::caption(const ChartHistory& history) {
    const auto [low, high] = std::minmax_element(history.values.cbegin(), history.values.cend());
    const double mean = average(history.values, *low, *high);
    return QStringLiteral("%1 · Average %2").arg(range(history), Format::gwei(mean));
}

QString ChartView::range(const ChartHistory& history) {
    const auto [low, high] = std::minmax_element(history.values.cbegin(), history.values.cend());
    const auto [lowLabel, highLabel] = Format::rangeLabels(*low, *high);
    return QStringLiteral("%1 – %2 %3").arg(lowLabel, highLabel, history.unit);
}

} // namespace torvane
