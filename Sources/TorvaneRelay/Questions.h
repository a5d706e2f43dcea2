#pragma once

#include "Chain/JSONRPC.h"
#include "Contract.h"
#include "Nodes.h"
#include "Word.h"

#include <QString>

/// Questions of Ethereum's JSON-RPC (the Execution API specification), and the parts of the answers that are read.
namespace torvane {

/// A block by its number or its tag, without its transactions.
struct BlockParams {
    QString block;

    auto elements() const { return std::tuple{block, false}; }
};

struct Block {
    HexQuantity number;
    HexQuantity timestamp; // seconds since 1970
    static constexpr std::tuple keys{Key{"number", &Block::number}, Key{"timestamp", &Block::timestamp}};
};

struct CallParams {
    ContractCall call;
    QString block;

    auto elements() const { return std::tuple{call, block}; }
};

/// The transaction that is estimated.
struct SampleTransfer {
    QString from;
    QString to;
    QString value;
    static constexpr std::tuple keys{Key{"from", &SampleTransfer::from}, Key{"to", &SampleTransfer::to},
                                     Key{"value", &SampleTransfer::value}};
};

struct TransferParams {
    SampleTransfer transfer;

    auto elements() const { return std::tuple{transfer}; }
};

/// A chain as it stands at one block, so that figures read one after the other belong together.
struct ChainAtBlock {
    Nodes& nodes;
    QString block; ///< a number, or "latest"

    /// What a contract's function returns. Throws as Nodes::ask does.
    Task<Words> call(ContractCall call) const;
};

/// Leaves of the nodes those whose chain has this id.
Task<> askChainId(Nodes& nodes, QString method, QString expected);

} // namespace torvane
