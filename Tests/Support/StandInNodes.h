#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

/// Nodes of the simulated market: what a JSON-RPC request gets as its answer's body. They continue the relay's document
/// from its time on, a block each twelve seconds on Ethereum, and send what real nodes send beside what was asked for.
/// Requests that are no JSON-RPC, and methods and parameters that they do not know, get error objects.
namespace torvane::StandInNodes {

/// Number of Ethereum's newest block at this time.
quint64 blockNumber(const QDateTime& now);

/// An Ethereum node: eth_feeHistory of the newest blocks, eth_gasPrice, eth_blockNumber. Where a base fee (gwei) is
/// given, the newest block has it, and those before it move in proportion.
QByteArray ethereum(const QByteArray& request, const QDateTime& now, std::optional<double> baseFee);

/// A Layer 2 node that knows eth_gasPrice; the price in gwei.
QByteArray l2(const QByteArray& request, double gasPrice);

/// The error object of a node that has had enough, with an id of null and a member that no rule knows.
QByteArray refusal();

} // namespace torvane::StandInNodes
