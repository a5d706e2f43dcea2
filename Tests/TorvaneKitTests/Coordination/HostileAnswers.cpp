#include "HostileAnswers.h"

#include <functional>

namespace torvane::HostileAnswers {

namespace {

using namespace std::chrono_literals;
using Ending = StandInAnswer::Ending;
using Spoiler = std::function<StandInAnswer(const QByteArray&)>;

QByteArray hexGwei(quint64 gwei) {
    return "\"0x" + QByteArray::number(gwei * 1'000'000'000, 16) + '"';
}

StandInAnswer withHead(const QByteArray& head) {
    StandInAnswer answer = StandInAnswer::raw(head);
    answer.ending = Ending::abruptClose;
    return answer;
}

const QList<Spoiler> spoilers{
    [](const QByteArray&) { return StandInAnswer::status(503, "busy").header("Retry-After", "1"); },
    [](const QByteArray&) {
        return StandInAnswer::status(429, R"({"id":1,"error":{"code":-32005,"message":"slow"}})");
    },
    [](const QByteArray&) { return StandInAnswer::status(403, "<html>no</html>"); },
    [](const QByteArray&) { return StandInAnswer::status(204); },
    [](const QByteArray&) { return StandInAnswer::status(304); },
    [](const QByteArray&) { return StandInAnswer::redirect(301, "https://localhost:1/"); },
    [](const QByteArray&) { return StandInAnswer::redirect(307, "http://localhost/"); },
    [](const QByteArray& body) { return StandInAnswer::ok(body).cutShort(body.size() / 2, Ending::reset); },
    [](const QByteArray& body) { return StandInAnswer::ok(body).cutShort(body.size() / 2, Ending::closeNotify); },
    [](const QByteArray& body) { return StandInAnswer::ok(body).cutShort(1, Ending::abruptClose); },
    [](const QByteArray& body) { return StandInAnswer::ok(body).cutShort(body.size() / 3, Ending::silence); },
    [](const QByteArray& body) { return StandInAnswer::ok(body).cutShortInHead(9, Ending::reset); },
    [](const QByteArray& body) { return StandInAnswer::ok(body).cutShortInHead(0, Ending::abruptClose); },
    [](const QByteArray&) { return StandInAnswer::silent(); },
    [](const QByteArray& body) { return StandInAnswer::ok(body).dripped(1, 5ms); },
    [](const QByteArray&) { return StandInAnswer::endlessBody(); },
    [](const QByteArray&) { return StandInAnswer::endlessHead(); },
    [](const QByteArray&) { return withHead("SSH-2.0-OpenSSH_9.2\r\n"); },
    [](const QByteArray&) { return withHead("HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\n"); },
    [](const QByteArray& body) { return StandInAnswer::ok(body).header("Content-Encoding", "gzip"); },
    [](const QByteArray& body) { return StandInAnswer::ok(body + '\0'); },
    [](const QByteArray& body) { return StandInAnswer::ok("\xef\xbb\xbf" + body); },
    [](const QByteArray&) { return StandInAnswer::ok(QByteArray(100'000, '[')); },
    [](const QByteArray&) { return StandInAnswer::ok(QByteArray(3'000'000, ' ')).gzipped(); },
};

} // namespace

QByteArray feeHistory(quint64 baseFee) {
    const QByteArray fee = hexGwei(baseFee);
    const QByteArray row = '[' + hexGwei(1) + ',' + hexGwei(2) + ',' + hexGwei(3) + ']';
    return R"({"jsonrpc":"2.0","id":1,"result":{"oldestBlock":"0x10","baseFeePerGas":[)" + fee + ',' +
           hexGwei(baseFee + 1) + R"(],"gasUsedRatio":[0.5],"reward":[)" + row + "]}}";
}

QByteArray gasPrice(quint64 gwei) {
    return R"({"jsonrpc":"2.0","id":1,"result":)" + hexGwei(gwei) + '}';
}

StandInAnswer spoiled(const QByteArray& goodBody, const QList<std::pair<const char*, QByteArray>>& badBodies,
                      std::mt19937& random) {
    const auto ways = static_cast<unsigned>(spoilers.size() + badBodies.size());
    const auto way = static_cast<qsizetype>(random() % ways);
    return way < spoilers.size() ? spoilers[way](goodBody) : StandInAnswer::ok(badBodies[way - spoilers.size()].second);
}

} // namespace torvane::HostileAnswers
