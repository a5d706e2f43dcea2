#pragma once

#include "Model/AppSettings.h"
#include "Model/Snapshot.h"
#include "Views/FigureLine.h"

#include <QDateTime>

#include <optional>

/// What the popover says of a snapshot.
namespace torvane {

/// The large figure: the price of ETH in dollars, or the base fee in gwei; "—" without a snapshot.
Figure headline(const std::optional<Snapshot>& snapshot, Denomination denom);

/// Below the title: the block of the live figures, else an estimate by the snapshot's time, which "~" marks.
QString blockCaption(const std::optional<quint64>& live, const Snapshot& snapshot);

/// An amount in dollars, "—" where there is none.
QString cost(const std::optional<double>& usd);

/// The networks that are not switched off, in the snapshot's order.
QList<L2Entry> enabledL2(const QList<L2Entry>& l2, const QSet<QString>& disabled);

/// The network that the badge follows, in this list; none for Ethereum.
const L2Entry* selectedL2(const QList<L2Entry>& l2, const BadgeChain& chain);

/// A network's figure: its gas price with the unit, or its cost in dollars; "—" where it has none.
QString primary(const L2Entry& entry, Denomination denom);

/// How long ago: "just now" for less than a minute (and for a time to come), "3m ago", "—" without a time.
QString updatedText(const std::optional<QDateTime>& lastUpdated, const QDateTime& now);

/// Whether data of this time are old enough to warn of: more than ten minutes.
bool isOld(const std::optional<QDateTime>& lastUpdated, const QDateTime& now);

/// Milliseconds until either of these two says something else.
qint64 untilNextAge(const QDateTime& lastUpdated, const QDateTime& now);

} // namespace torvane
