#pragma once

#include "RelayTable.h"
#include "StandInChain.h"

#include <QDateTime>

#include <map>
#include <memory>

namespace torvane {

/// Ethereum and one network of each kind, with figures that are easy to work out:
///
/// Ether costs 3000 dollars by the feed's round 500 of phase 7, ten minutes old. Rounds are half an hour and 1.5
/// dollars apart, so that the last one of a day ago is 452, at 2928 dollars. The pool's mean tick is 196000. Ethereum
/// stands at block 1146, so that contracts are asked at 1144. Block b has a base fee of 10 gwei, b mod 50 hundredths
/// and b hundred-thousandths: 1146 one of 10.47146. Tips are 1, 2 and 3 gwei. Nodes give at most 400 blocks at once.
/// There are 1000 rETH at 1.125 ether, 2000 stETH, and 4000 mETH at 1.0625.
/// A unit of gas costs 0.006 gwei on all networks and 4.25 on Starknet. Base: Ethereum's share is 0.000001 ether and
/// the operator's 0.0000005. Scroll: 0.000002. Arbitrum: a transfer is estimated at 25000 units. Linea: 30000 at 0.05
/// gwei. Blocks are 2 seconds apart, on Starknet 3.
class StandInWorld final {
public:
    StandInWorld();

    /// All networks with one node each.
    RelayTable table() const;

    /// The name of a network, or "Ethereum".
    StandInChain& chain(const QString& name) { return *m_chains.at(name); }
    QStringList names() const;

    static QDateTime now();

private:
    void makeEthereum();
    void makeFeed(StandInChain& node);
    void makeStaking(StandInChain& node);
    StandInChain& makeNetwork(const QString& name, quint64 chainId);
    void makeStarknet();

    std::map<QString, std::unique_ptr<StandInChain>> m_chains;
};

} // namespace torvane
