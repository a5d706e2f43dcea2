#pragma once

#include "Model/Snapshot.h"
#include "Reading.h"
#include "RelayTable.h"

#include <QDateTime>
#include <QStringList>

#include <optional>

namespace torvane {

/// The earlier document, as far as it is of use.
struct Earlier {
    Snapshot snapshot;
    double minutesAgo;
};

/// The document of a complete reading, one that has price and gas. Histories go on from the earlier document.
Snapshot composed(const Reading& reading, const RelayTable& table, const std::optional<Earlier>& earlier,
                  const QDateTime& generatedAt);

/// What a person wants to know of a run: a line for Ethereum, for each network and for staking.
QStringList summary(const Reading& reading, const RelayTable& table, const Snapshot& snapshot);

/// The time as the document states it, in whole seconds of UTC (RFC 3339).
QString documentTime(const QDateTime& time);

} // namespace torvane
