#pragma once

#include <QByteArray>
#include <QList>

#include <utility>

/// What nodes answer, good and bad.
namespace torvane::RPCAnswers {

/// One block, number 6, with a base fee of 12 gwei (0x2cb417800) and priority fees of 0.15, 0.35 and 0.65 gwei.
inline const QByteArray feeHistory =
    R"({"jsonrpc":"2.0","id":1,"result":{"oldestBlock":"0x6","reward":[["0x8f0d180","0x14dc9380","0x26be3680"]],)"
    R"("baseFeePerGas":["0x2cb417800","0x343776500"],"gasUsedRatio":[0.5],)"
    R"("baseFeePerBlobGas":["0x1","0x1"],"blobGasUsedRatio":[0]}})";

/// 0.006 gwei.
inline const QByteArray gasPrice = R"({"jsonrpc":"2.0","id":1,"result":"0x5b8d80"})";

inline QByteArray error(const QByteArray& code, const QByteArray& message) {
    return R"({"jsonrpc":"2.0","id":1,"error":{"code":)" + code + R"(,"message":")" + message + R"("}})";
}

/// The good fee history with one part replaced.
inline QByteArray feeHistoryWith(const QByteArray& part, const QByteArray& replacement) {
    QByteArray answer = feeHistory;
    answer.replace(part, replacement);
    return answer != feeHistory ? answer : QByteArray("This part is not there");
}

/// Bodies that public nodes really send with status 200 and that are no fee history, each with its name.
inline QList<std::pair<const char*, QByteArray>> badFeeHistories() {
    const QByteArray reward = R"("reward":[["0x8f0d180","0x14dc9380","0x26be3680"]],)";
    const QByteArray ratio = R"("gasUsedRatio":[0.5])";
    const QByteArray fees = R"(["0x2cb417800","0x343776500"])";
    return {
        {"reward missing", feeHistoryWith(reward, "")},
        {"reward null", feeHistoryWith(reward, R"("reward":null,)")},
        {"an empty row", feeHistoryWith(reward, R"("reward":[[]],)")},
        {"a null row", feeHistoryWith(reward, R"("reward":[null],)")},
        {"null entries", feeHistoryWith(R"("0x8f0d180")", "null")},
        {"a negative quantity", feeHistoryWith("0x8f0d180", "-0xfd")},
        {"numbers for quantities", feeHistoryWith(R"("0x8f0d180")", "150000000")},
        {"no forecast", feeHistoryWith(fees, R"(["0x2cb417800"])")},
        {"too many base fees", feeHistoryWith(fees, R"(["0x1","0x1","0x1"])")},
        {"no base fees", feeHistoryWith(fees, "[]")},
        {"a null ratio", feeHistoryWith(ratio, R"("gasUsedRatio":[null])")},
        {"ratios null", feeHistoryWith(ratio, R"("gasUsedRatio":null)")},
        {"ratios missing", feeHistoryWith(ratio, R"("other":1)")},
        {"block number missing", feeHistoryWith("oldestBlock", "block")},
        {"an empty history",
         R"({"id":1,"result":{"oldestBlock":"0x0","baseFeePerGas":[],"gasUsedRatio":[],"reward":[]}})"},
        {"result null", R"({"jsonrpc":"2.0","id":1,"result":null})"},
        {"no result", R"({"jsonrpc":"2.0","id":1})"},
        {"an error", error("-32005", "slow down")},
        {"an error without an id", R"({"jsonrpc":"2.0","id":null,"error":{"code":-32600,"message":"bad request"}})"},
        {"an error with an id in words",
         R"({"id":"1","error":{"code":-32000,"message":"no","data":{"see":"https://a"}}})"},
        {"an error beside the result", feeHistoryWith(R"("id":1,)", R"("error":{"code":1,"message":"no"},)")},
        {"plain text", "rate limit exceeded"},
        {"a page", "<!DOCTYPE html><html><body>Just a moment...</body></html>"},
        {"nothing", ""},
        {"half an answer", feeHistory.first(feeHistory.size() / 2)},
        {"a gas price", gasPrice},
        {"a list", "[" + feeHistory + "]"},
    };
}

/// The same for gas prices.
inline QList<std::pair<const char*, QByteArray>> badGasPrices() {
    return {
        {"result null", R"({"jsonrpc":"2.0","id":1,"result":null})"},
        {"a number", R"({"result":6000000})"},
        {"a decimal text", R"({"result":"6000000"})"},
        {"a negative quantity", R"({"result":"-0xfd"})"},
        {"no digits", R"({"result":"0x"})"},
        {"more than 64 bits", R"({"result":"0x10000000000000000"})"},
        {"an error", error("-32601", "the method eth_gasPrice does not exist")},
        {"plain text", "ok"},
        {"nothing", ""},
        {"a fee history", feeHistory},
    };
}

} // namespace torvane::RPCAnswers
