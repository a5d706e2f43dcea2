#include "Support/StandInNodes.h"

#include "Support/SimulatedMarket.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace torvane::StandInNodes {

namespace {

using namespace Qt::StringLiterals;

constexpr int unknownMethod = -32601;
constexpr int invalidParameters = -32602;
constexpr qint64 secondsPerBlock = 12;
constexpr quint64 mostBlocks = 1024;

// When blocks began to come at fixed times, and which one that was.
constexpr qint64 firstFixedTime = 1'663'224'179;
constexpr quint64 firstFixedBlock = 15'537'394;

QString hex(quint64 value) {
    return "0x"_L1 + QLatin1StringView(QByteArray::number(value, 16));
}

QString wei(double gwei) {
    return hex(static_cast<quint64>(std::llround(gwei * 1e9)));
}

QJsonObject error(int code, const QString& message) {
    return {{u"error"_s, QJsonObject{{u"code"_s, code}, {u"message"_s, message}}}};
}

QJsonObject result(const QJsonValue& value) {
    return {{u"result"_s, value}};
}

QDateTime timeOf(quint64 block) {
    const qint64 seconds = firstFixedTime + secondsPerBlock * static_cast<qint64>(block - firstFixedBlock);
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

/// A number in 0..1 that each block has for itself.
double chance(quint64 block) {
    const double wild = std::sin(static_cast<double>(block % 100'003) * 12.9898) * 43758.5453;
    return wild - std::floor(wild);
}

/// A block in forty holds no transaction: nothing used, nothing paid.
bool isEmpty(quint64 block) {
    return block % 40 == 7;
}

double gasUsedRatio(quint64 block) {
    return isEmpty(block) ? 0 : 0.2 + 0.75 * chance(block);
}

/// What the percentiles of a block paid: the market's usual shares, each block up to a fifth above or below.
QJsonArray reward(quint64 block, double baseFee, const QJsonArray& percentiles) {
    QJsonArray row;
    for (const QJsonValue& percentile : percentiles) {
        const double share = SimulatedMarket::priorityFeeShare(percentile.toDouble()) * (0.8 + 0.4 * chance(block + 1));
        row.append(isEmpty(block) ? hex(0) : wei(baseFee * share));
    }
    return row;
}

/// The number of blocks that was asked for, within the bounds that real nodes keep; none where it is no quantity.
std::optional<quint64> blockCount(const QJsonValue& parameter) {
    bool isNumber = false;
    const QString text = parameter.toString();
    const quint64 count = text.startsWith("0x"_L1) ? text.sliced(2).toULongLong(&isNumber, 16) : 0;
    return isNumber && count > 0 ? std::optional(std::min(count, mostBlocks)) : std::nullopt;
}

QJsonObject feeHistory(const QJsonArray& parameters, const QDateTime& now, std::optional<double> wanted) {
    const std::optional<quint64> count = blockCount(parameters.at(0));
    if (!count || parameters.at(1).toString() != "latest"_L1)
        return error(invalidParameters, u"invalid argument"_s);
    const quint64 newest = blockNumber(now);
    const double scale = wanted ? *wanted / SimulatedMarket::baseFee(timeOf(newest)) : 1;
    const auto baseFee = [scale](quint64 block) { return scale * SimulatedMarket::baseFee(timeOf(block)); };
    QJsonArray fees;
    QJsonArray ratios;
    QJsonArray rewards;
    for (quint64 block = newest - *count + 1; block <= newest; ++block) {
        fees.append(wei(baseFee(block)));
        ratios.append(gasUsedRatio(block));
        rewards.append(reward(block, baseFee(block), parameters.at(2).toArray()));
    }
    fees.append(wei(baseFee(newest + 1))); // The forecast for the next block.
    const QJsonArray blobFees(QJsonArray::fromStringList(QStringList(fees.size(), u"0x1"_s)));
    return result(QJsonObject{{u"oldestBlock"_s, hex(newest - *count + 1)},
                              {u"baseFeePerGas"_s, fees},
                              {u"gasUsedRatio"_s, ratios},
                              {u"reward"_s, rewards},
                              {u"baseFeePerBlobGas"_s, blobFees},
                              {u"blobGasUsedRatio"_s, ratios}});
}

/// The request's envelope opened, and the answer's closed.
template <class Respond>
QByteArray answer(const QByteArray& request, const Respond& respond) {
    const QJsonObject call = QJsonDocument::fromJson(request).object();
    const QString method = call.value("method"_L1).toString();
    QJsonObject body =
        method.isEmpty() ? error(-32600, u"invalid request"_s) : respond(method, call.value("params"_L1).toArray());
    body.insert("jsonrpc"_L1, u"2.0"_s);
    body.insert("id"_L1, call.value("id"_L1));
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

QJsonObject notFound(const QString& method) {
    return error(unknownMethod, "the method "_L1 + method + " does not exist/is not available"_L1);
}

} // namespace

quint64 blockNumber(const QDateTime& now) {
    return firstFixedBlock + static_cast<quint64>((now.toSecsSinceEpoch() - firstFixedTime) / secondsPerBlock);
}

QByteArray ethereum(const QByteArray& request, const QDateTime& now, std::optional<double> baseFee) {
    return answer(request, [&](const QString& method, const QJsonArray& parameters) {
        if (method == "eth_feeHistory"_L1)
            return feeHistory(parameters, now, baseFee);
        if (method == "eth_blockNumber"_L1)
            return result(hex(blockNumber(now)));
        if (method != "eth_gasPrice"_L1)
            return notFound(method);
        const double base = baseFee.value_or(SimulatedMarket::baseFee(timeOf(blockNumber(now))));
        return result(wei(base + base * SimulatedMarket::priorityFeeShare(50)));
    });
}

QByteArray l2(const QByteArray& request, double gasPrice) {
    return answer(request, [&](const QString& method, const QJsonArray&) {
        return method == "eth_gasPrice"_L1 ? result(wei(gasPrice)) : notFound(method);
    });
}

QByteArray refusal() {
    return R"({"jsonrpc":"2.0","id":null,"error":{"code":-32005,"message":"limit exceeded","data":{"see":"docs"}}})";
}

} // namespace torvane::StandInNodes
