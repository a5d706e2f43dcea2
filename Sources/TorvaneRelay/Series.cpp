#include "Series.h"

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

constexpr double dayMinutes = 1440;
/// The document is about four runs old when three are missing, and three when two are; timers are late by some seconds.
constexpr double mostRunsBetween = 3.5;
constexpr qsizetype fewestPointsForMedian = 12;
constexpr double elevatedFactor = 1.5;

constexpr qsizetype dayPointsOfBaseFees = 144;
constexpr double minutesBetweenBaseFees = 10;

bool goesOn(double minutesAgo, double minutesBetweenRuns) {
    return minutesAgo <= mostRunsBetween * minutesBetweenRuns;
}

/// The second run knows the first one's price alone.
Series startedBy(const L2Entry& row) {
    if (row.history && row.historyWindowMinutes && !row.history->isEmpty())
        return {*row.history, std::max(0.0, *row.historyWindowMinutes)};
    if (row.costGwei)
        return {{*row.costGwei}, 0};
    return {};
}

/// How many points fill a window, one for each run.
double fullCount(const Series& series, double minutesBetweenRuns) {
    return series.windowMinutes / minutesBetweenRuns + 1;
}

void dropOlderThanADay(Series& series) {
    if (series.windowMinutes <= dayMinutes)
        return;
    const double spacing = series.windowMinutes / static_cast<double>(series.points.size() - 1);
    // A little more than a day counts as a day: runs are never exactly on time.
    const auto kept = static_cast<qsizetype>(std::floor(dayMinutes / spacing + 0.5)) + 1;
    if (kept < series.points.size())
        series.points = series.points.sliced(series.points.size() - kept);
    series.windowMinutes = dayMinutes;
}

qsizetype marksPassed(double minutesAgo, const QDateTime& now) {
    const double minutes = static_cast<double>(now.toMSecsSinceEpoch()) / 60'000;
    return static_cast<qsizetype>(std::floor(minutes / minutesBetweenBaseFees) -
                                  std::floor((minutes - minutesAgo) / minutesBetweenBaseFees));
}

double median(QList<double> values) {
    const auto middle = values.begin() + values.size() / 2;
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1)
        return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

} // namespace

std::optional<Series> continued(const std::optional<EarlierRow>& earlier, std::optional<double> price,
                                double minutesBetweenRuns) {
    if (!earlier || !goesOn(earlier->minutesAgo, minutesBetweenRuns))
        return std::nullopt;
    Series series = startedBy(earlier->row);
    if (series.points.isEmpty())
        return std::nullopt;
    series.windowMinutes += earlier->minutesAgo;
    if (price)
        series.points.append(*price);
    if (static_cast<double>(series.points.size()) < fullCount(series, minutesBetweenRuns) / 2)
        return std::nullopt;
    if (series.points.size() < 2)
        return std::nullopt;
    dropOlderThanADay(series);
    return series;
}

QList<double> continuedBaseFees(const std::optional<EarlierBaseFees>& earlier, const QList<double>& newest,
                                double present, const QDateTime& now, double minutesBetweenRuns) {
    if (!earlier || !goesOn(earlier->minutesAgo, minutesBetweenRuns))
        return newest;
    const QList<double> added = newest.isEmpty() ? QList<double>{present} : newest;
    const qsizetype count = std::clamp<qsizetype>(marksPassed(earlier->minutesAgo, now), 0, added.size());
    QList<double> points = earlier->points + added.last(count);
    if (points.size() > dayPointsOfBaseFees)
        points = points.last(dayPointsOfBaseFees);
    return points.size() > newest.size() ? points : newest;
}

QString congestion(std::optional<double> price, const QList<double>& earlierPoints) {
    if (!price)
        return QStringLiteral("Unavailable");
    const bool isElevated =
        earlierPoints.size() >= fewestPointsForMedian && *price > elevatedFactor * median(earlierPoints);
    return isElevated ? QStringLiteral("Elevated") : QStringLiteral("Normal");
}

} // namespace torvane
