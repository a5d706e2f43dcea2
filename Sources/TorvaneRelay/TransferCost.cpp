#include "TransferCost.h"

#include "Questions.h"

namespace torvane {

namespace {

constexpr quint64 transferGas = 21000;
constexpr double weiPerEther = 1e18;
constexpr int decimals = 18;

// Nobody's address: neither a contract nor one that a network reserves.
constexpr QLatin1StringView somebody("0x76656c69736b0000000000000000000000000bed");

// The networks' own contracts, at these addresses since their first block.
constexpr QLatin1StringView opStackOracle("0x420000000000000000000000000000000000000F");
constexpr QLatin1StringView scrollOracle("0x5300000000000000000000000000000000000002");

struct LineaEstimate {
    HexQuantity gasLimit;
    HexQuantity baseFeePerGas;
    HexQuantity priorityFeePerGas;
    static constexpr std::tuple keys{Key{"gasLimit", &LineaEstimate::gasLimit},
                                     Key{"baseFeePerGas", &LineaEstimate::baseFeePerGas},
                                     Key{"priorityFeePerGas", &LineaEstimate::priorityFeePerGas}};
};

double etherOf(quint64 gas, double priceWei) {
    return static_cast<double>(gas) * priceWei / weiPerEther;
}

TransferParams sampleTransfer() {
    // Of nothing: nodes refuse to estimate what the sender cannot pay.
    return {{somebody, somebody, QStringLiteral("0x0")}};
}

/// The byte string of a number in RLP (Ethereum's yellow paper, appendix B): big-endian without leading zeros.
QByteArray rlpNumber(quint64 number) {
    QByteArray digits;
    for (; number > 0; number >>= 8)
        digits.prepend(static_cast<char>(number & 0xff));
    const bool isItself = digits.size() == 1 && (digits[0] & 0x80) == 0;
    return isItself ? digits : static_cast<char>(0x80 + digits.size()) + digits;
}

/// A list of items of less than 256 bytes in all.
QByteArray rlpList(const QByteArray& items) {
    constexpr qsizetype longestShortList = 55;
    if (items.size() <= longestShortList)
        return static_cast<char>(0xc0 + items.size()) + items;
    return '\xf8' + (static_cast<char>(items.size()) + items);
}

/// Prices the share of Ethereum.
Task<double> readOracleFee(Nodes& nodes, QString oracle, QByteArray transaction) {
    const ChainAtBlock chain{nodes, QStringLiteral("latest")};
    Task<Words> call = chain.call(contractCallWithBytes(oracle, u"getL1Fee(bytes)", transaction));
    const Words words = co_await call;
    co_return words.at(0).scaled(decimals);
}

/// Older networks of the stack have no such fee and refuse the question.
Task<double> readOperatorFee(Nodes& nodes) {
    const ChainAtBlock chain{nodes, QStringLiteral("latest")};
    double fee = 0;
    try {
        Task<Words> call = chain.call(contractCall(opStackOracle, u"getOperatorFee(uint256)", {Word(transferGas)}));
        const Words words = co_await call;
        fee = words.at(0).scaled(decimals);
    } catch (const CallReverted&) {
    }
    co_return fee;
}

Task<double> readLineaCost(Nodes& nodes) {
    Task<LineaEstimate> call = nodes.ask<LineaEstimate>(QStringLiteral("linea_estimateGas"), sampleTransfer());
    const LineaEstimate estimate = co_await call;
    const double price =
        static_cast<double>(estimate.baseFeePerGas.value) + static_cast<double>(estimate.priorityFeePerGas.value);
    co_return etherOf(estimate.gasLimit.value, price);
}

Task<double> readEstimate(Nodes& nodes, double gasPriceWei) {
    Task<HexQuantity> call = nodes.ask<HexQuantity>(QStringLiteral("eth_estimateGas"), sampleTransfer());
    const HexQuantity gas = co_await call;
    co_return etherOf(gas.value, gasPriceWei);
}

Task<double> readOracleCost(Nodes& nodes, RelayTable::Network network, quint64 gasPriceWei) {
    const quint64 chainId = HexQuantity::fromText(network.chainId).value;
    const bool isScroll = network.transfer == TransferModel::scroll;
    Task<double> oracleCall =
        readOracleFee(nodes, isScroll ? scrollOracle : opStackOracle, unsignedTransfer(chainId, gasPriceWei));
    double cost = co_await oracleCall;
    cost += etherOf(transferGas, static_cast<double>(gasPriceWei));
    if (!isScroll) {
        Task<double> operatorCall = readOperatorFee(nodes);
        const double fee = co_await operatorCall;
        cost += fee;
    }
    co_return cost;
}

} // namespace

Task<double> readTransferCost(Nodes& nodes, RelayTable::Network network, quint64 gasPriceWei) {
    switch (network.transfer) {
    case TransferModel::estimate:
        return readEstimate(nodes, static_cast<double>(gasPriceWei));
    case TransferModel::linea:
        return readLineaCost(nodes);
    case TransferModel::opStack:
    case TransferModel::scroll:
        return readOracleCost(nodes, network, gasPriceWei);
    case TransferModel::starknet:
        break;
    }
    qFatal("Starknet's fees are not paid in ether");
}

QByteArray unsignedTransfer(quint64 chainId, quint64 gasPriceWei) {
    constexpr char eip1559 = 0x02;
    constexpr char emptyText = '\x80';
    constexpr char emptyList = '\xc0';
    constexpr char addressText = '\x94';
    constexpr quint64 nonce = 7;
    constexpr quint64 hundredthOfEther = 10'000'000'000'000'000;
    const QByteArray fields = rlpNumber(chainId) + rlpNumber(nonce) + rlpNumber(gasPriceWei / 10) +
                              rlpNumber(gasPriceWei) + rlpNumber(transferGas) + addressText +
                              bytesFromHex(QString(somebody)).value() + rlpNumber(hundredthOfEther) + emptyText +
                              emptyList;
    return QByteArray(1, eip1559) + rlpList(fields);
}

} // namespace torvane
