#pragma once

#include "AnvilNode.h"
#include "RelayTable.h"
#include "StandInWorld.h"
#include "Word.h"

#include <map>
#include <memory>

namespace torvane {

/// A real node for each chain of the relay's table, with contracts at their real addresses whose figures are these:
///
/// Ethereum: blocks 1 to 170, block b with a base fee of 10 + b mod 7 gwei and from 151 on tips of 1, 2 and 3 gwei.
/// Ether costs 3200 dollars. The feed changed its phase today: the rounds 1 to 5 of phase 7 are an hour apart and end
/// ten minutes ago; those of phase 6, 1 to 40, end an hour before with round 40 at 3000 dollars, and each before that
/// is an hour earlier and 2 dollars less. The pool's mean tick is 195300. There are 1000 of each staking token and a
/// quarter; the rates are those of `rateOf`. Networks: 1100 blocks, 2 seconds apart, then one with a base fee of 8 gwei
/// times the network's place in the table from 1, divided by a thousand. OP stack: Ethereum's share is 1 gwei for each
/// byte, the operator's 3 wei for each unit. Scroll: 2 gwei for each byte. A transfer to the estimated address takes
/// 21000 units and 7 more for each place. Linea's own estimate, and all of Starknet, are a stand-in's, the one of
/// StandInWorld.
class AnvilWorld final {
public:
    /// Ends the program where a node does not start.
    AnvilWorld();

    /// The built-in table with these nodes in the place of the public ones.
    RelayTable table() const { return m_table; }

    AnvilNode& ethereum() { return *m_nodes.at(QStringLiteral("Ethereum")); }

    static double baseFee(quint64 block) { return 10 + static_cast<double>(block % 7); }
    static quint64 rateOf(const QString& token); ///< in wei

private:
    AnvilNode& start(const QString& name, const QString& chainId);
    void makeEthereum();
    void makeFeed();
    void putRound(quint64 phase, quint64 number, quint64 dollars, qint64 secondsAgo);
    void makeStaking();
    void makeNetwork(const RelayTable::Network& network, quint64 place);
    static void putCode(AnvilNode& node, const QString& address, const QByteArray& code);
    static void putWord(AnvilNode& node, const QString& address, const Word& slot, const Word& value);

    StandInWorld m_standIns;
    RelayTable m_table;
    std::map<QString, std::unique_ptr<AnvilNode>> m_nodes;
};

} // namespace torvane
