#pragma once

#include "Model/ChartHistory.h"

#include <QWidget>

namespace torvane {

class Paragraph;
class Sparkline;
class TextLine;

/// A series with its heading and, at the trailing edge, its range and average; or a text in place of the chart.
class ChartView final : public QWidget {
    Q_OBJECT

public:
    /// `chartSize` is the line chart's; `placeholder` stands where there is no history.
    ChartView(QSize chartSize, const QString& placeholder, QWidget* parent = nullptr);

    /// The heading stands with the placeholder too.
    void setChart(const QString& heading, const std::optional<ChartHistory>& history);

    /// The range and the average of a series of at least one value: "9.2 – 24.8 gwei · Average 13.9".
    static QString caption(const ChartHistory& history);

    /// The range alone, where there is no room for both.
    static QString range(const ChartHistory& history);

private:
    int m_width;
    TextLine* m_heading;
    TextLine* m_caption;
    Sparkline* m_sparkline;
    Paragraph* m_placeholder;
};

} // namespace torvane
