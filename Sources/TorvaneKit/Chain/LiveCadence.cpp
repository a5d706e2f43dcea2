#include "Chain/LiveCadence.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr double ethereumBlockTime = 12;
constexpr double shortestInterval = 5;
constexpr double shortestWindow = 60;

} // namespace

double livePollInterval(LiveGasCadence cadence, LiveChain chain, std::optional<double> l2BlockTimeSec) {
    if (const std::optional<double> fixed = fixedInterval(cadence))
        return *fixed;
    if (chain == LiveChain::ethereum)
        return ethereumBlockTime;
    return std::max(shortestInterval, l2BlockTimeSec.value_or(shortestInterval)); // NaN gives the shortest, too.
}

bool isLiveQuoteFresh(const QDateTime& fetchedAt, const QDateTime& now, double pollInterval) {
    const double age = static_cast<double>(fetchedAt.msecsTo(now)) / 1000;
    return age >= 0 && age <= std::max(3 * pollInterval, shortestWindow);
}

} // namespace torvane
