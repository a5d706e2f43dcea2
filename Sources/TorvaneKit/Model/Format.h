#pragma once

#include "Model/AppSettings.h"
#include "Model/Snapshot.h"

#include <QString>

#include <optional>
#include <utility>

/// Numbers as the short texts that users read. Fixed formats round as C's printf does (ties to even, exact binary
/// value) and always have a point; only grouped numbers follow the user's locale. Safe to call from any thread.
namespace torvane::Format {

/// Gas of a plain ETH transfer.
inline constexpr double transferGas = 21000;

/// Gas assumed for minting an NFT.
inline constexpr double nftMintGas = 120000;

/// A gas price in gwei, without its unit: "148", "12.3", "0.05", "0.00012". Negative infinity has no text and must not
/// be passed: it ends the process.
QString gwei(double value);

/// Two gas prices in gwei as texts that differ whenever nine decimals can tell the prices apart.
std::pair<QString, QString> rangeLabels(double low, double high);

/// US dollars: "$1234", "$1.26", "<$0.01", and "$0.00" for what is not above zero.
QString usd(double value);

/// The price of one ETH in US dollars, grouped by the user's locale: "$3,456.70".
QString ethPrice(double value);

/// A change in percent, signed: "+0.0%", "-1.3%".
QString pct(double value);

/// What `gas` units cost in US dollars at a gas price in gwei and an ETH price in dollars, as `usd` puts it.
QString txUsd(double gwei, double ethPrice, double gas);

/// The number of the block that is current at a time (RFC 3339), extrapolated from the first proof-of-stake block at
/// one block in twelve seconds, grouped by the user's locale. A text that is no time counts as now.
QString estimateBlock(const QString& at);

/// A block number, grouped by the user's locale.
QString block(quint64 value);

/// The badge's figure: for Ethereum the chosen gas price (bare) or the cost of a transfer, for a Layer 2 network its
/// gas price (with unit) or its cost; "—" where there is no such network or figure.
QString badgeValue(const BadgeChain& chain, const GasData& gas, const QList<L2Entry>& l2, BadgeSource source,
                   Denomination denom, double ethPrice);

/// The figure of a Layer 2 network, as the badge shows it: its gas price with unit or its cost, "—" where it has none.
QString l2Value(const L2Entry& entry, Denomination denom);

/// The short label of the badge's Layer 2 network; none for Ethereum and for a network that is not listed.
std::optional<QString> badgeTag(const BadgeChain& chain, const QList<L2Entry>& l2);

} // namespace torvane::Format
