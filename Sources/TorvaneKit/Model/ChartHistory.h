#pragma once

#include "Model/AppSettings.h"
#include "Model/Snapshot.h"

#include <QList>
#include <QString>

#include <optional>

namespace torvane {

/// A series that is charted, as the relay sent it. Its values are shared with the snapshot, not copied.
struct ChartHistory {
    QString heading; ///< in capitals
    QList<double> values;
    QString unit;

    bool operator==(const ChartHistory&) const = default;
};

namespace Format {

/// What stands over Ethereum's chart, with a history or without.
inline constexpr QLatin1StringView baseFeeHeading("24H BASE FEE");

/// The gas history of a network, in gwei; none where there is nothing to chart: no figures for Ethereum, or a Layer 2
/// network that is not listed or has no history yet.
std::optional<ChartHistory> chartHistory(const BadgeChain& chain, const std::optional<GasData>& gas,
                                         const QList<L2Entry>& l2);

} // namespace Format

} // namespace torvane
