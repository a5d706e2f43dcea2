#include "Chain/LiveGasClient.h"

#include "Chain/FeeHistory.h"
#include "Chain/JSONRPC.h"
#include "Chain/NetworkClient.h"
#include "Model/Config.h"

#include <chrono>

namespace torvane {

namespace {

using namespace std::chrono_literals;

constexpr qint64 requestId = 1;
constexpr quint64 historyBlocks = 20;

Request rpcRequest(const QString& endpoint, const QByteArray& body) {
    Request request;
    request.url = QUrl(endpoint, QUrl::StrictMode);
    if (!request.url.isValid() || request.url.scheme().isEmpty() || request.url.host().isEmpty())
        throw LiveGasFailure(LiveGasFailure::Case::invalidURL);
    request.method = "POST";
    request.body = body;
    request.headers = {{"Content-Type", "application/json"}};
    request.timeout = 10s;
    request.bodyLimit = rpcBodyLimit;
    return request;
}

LiveGasQuote decodeFeeHistory(const QByteArray& body) {
    const FeeHistoryResponse history = JSON::decode<JSONRPCResponse<FeeHistoryResponse>>(body).value();
    if (!hasBlockNumbers(history))
        throw DecodingError(DecodingError::Cause::corrupted, "Block numbers beyond 64 bits");
    return deriveLive(history);
}

HexQuantity decodeGasPrice(const QByteArray& body) {
    return JSON::decode<JSONRPCResponse<HexQuantity>>(body).value();
}

/// The first endpoint's answer that can be had and decoded.
template <class Answer>
Task<Answer> firstAnswer(QStringList endpoints, QByteArray body, Answer (*decode)(const QByteArray&)) {
    std::exception_ptr lastError = std::make_exception_ptr(LiveGasFailure(LiveGasFailure::Case::noRPC));
    for (const QString& endpoint : endpoints) {
        try {
            Task<QByteArray> call = NetworkClient::request(rpcRequest(endpoint, body));
            const QByteArray answer = co_await call;
            const auto work = [decode, answer] { return decode(answer); };
            const Answer decoded = co_await detached(work);
            co_return decoded;
        } catch (...) {
            lastError = std::current_exception(); // Whatever it is, it is this endpoint's failure: the next one's turn.
        }
    }
    std::rethrow_exception(lastError);
}

} // namespace

Task<LiveGasQuote> LiveGasClient::ethereum() const {
    const JSONRPCRequest request(requestId, QStringLiteral("eth_feeHistory"),
                                 FeeHistoryParams{historyBlocks, {15, 50, 90}});
    const QByteArray body = JSON::encode(request);
    Task<LiveGasQuote> answer = firstAnswer(Config::ethereumRPCURLs(), body, &decodeFeeHistory);
    const LiveGasQuote quote = co_await answer;
    co_return quote;
}

Task<LiveL2Quote> LiveGasClient::l2(L2Entry network) const {
    const JSONRPCRequest request(requestId, QStringLiteral("eth_gasPrice"), EmptyRPCParams{});
    const QByteArray body = JSON::encode(request);
    Task<HexQuantity> answer = firstAnswer(network.rpc.value_or(QStringList()), body, &decodeGasPrice);
    const HexQuantity price = co_await answer;
    co_return LiveL2Quote{network.name, price.gwei()};
}

} // namespace torvane
