#include "StandInChain.h"

#include "Chain/JSONRPC.h"
#include "Contract.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace torvane {

namespace {

QByteArray envelope(const QString& key, const QJsonValue& value) {
    const QJsonObject body{{QStringLiteral("jsonrpc"), QStringLiteral("2.0")}, {QStringLiteral("id"), 1}, {key, value}};
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

StandInAnswer refusal(int code, const QString& message) {
    const QJsonObject error{{QStringLiteral("code"), code}, {QStringLiteral("message"), message}};
    return StandInAnswer::ok(envelope(QStringLiteral("error"), error));
}

QString callKey(const QString& contract, const QString& data) {
    return contract + QLatin1Char(' ') + data.left(10);
}

} // namespace

StandInChain::StandInChain()
    : m_server(std::make_unique<StandInServer>()) {
    m_server->on("/", [this](const StandInRequest& request) { return respond(request); });
}

QString StandInChain::endpoint() const {
    return QStringLiteral("https://") + m_server->host();
}

void StandInChain::on(const QString& question, Answer answer) {
    m_answers.insert(question, std::move(answer));
}

void StandInChain::always(const QString& question, const QJsonValue& answer) {
    on(question, [answer](const QJsonArray&) { return answer; });
}

void StandInChain::onCall(const QString& contract, const QString& signature, Function function) {
    const QString question = signature + QStringLiteral(" of ") + contract.left(6);
    m_questions.insert(callKey(contract, contractCall(contract, signature).data), question);
    on(question, [function](const QJsonArray& params) -> QJsonValue {
        const QString data = params[0][QLatin1String("data")].toString();
        const QList<Word> words = function(QByteArray::fromHex(data.sliced(10).toLatin1()));
        return words.isEmpty() ? QJsonValue(QJsonValue::Undefined) : QJsonValue(Words(words).toText());
    });
}

void StandInChain::onCall(const QString& contract, const QString& signature, const QList<Word>& words) {
    onCall(contract, signature, [words](const QByteArray&) { return words; });
}

void StandInChain::misbehave(const QString& question, const StandInAnswer& answer, int goodAnswers) {
    m_fault = Fault{question, answer, goodAnswers};
}

void StandInChain::behave() {
    m_fault.reset();
}

QStringList StandInChain::questions() const {
    QStringList names = m_answers.keys();
    names.sort();
    return names;
}

QString StandInChain::nameOf(const QString& method, const QJsonArray& params) const {
    if (method == QLatin1String("eth_call"))
        return m_questions.value(
            callKey(params[0][QLatin1String("to")].toString(), params[0][QLatin1String("data")].toString()),
            QStringLiteral("an unknown call"));
    const bool hasBlock = method.contains(QLatin1String("Block")) || method == QLatin1String("eth_feeHistory");
    if (!hasBlock)
        return method;
    const bool isLatest = params.contains(QStringLiteral("latest"));
    return method + (isLatest ? QStringLiteral(" latest") : QStringLiteral(" earlier"));
}

StandInAnswer StandInChain::respond(const StandInRequest& request) {
    const QJsonObject call = QJsonDocument::fromJson(request.body).object();
    const QJsonArray params = call[QStringLiteral("params")].toArray();
    const QString question = nameOf(call[QStringLiteral("method")].toString(), params);
    ++m_asked[question];
    if (m_fault && m_fault->question == question && m_fault->goodAnswers-- <= 0)
        return m_fault->answer;
    if (!m_answers.contains(question))
        return refusal(-32601, QStringLiteral("the method does not exist"));
    const QJsonValue result = m_answers[question](params);
    if (result.isUndefined())
        return refusal(3, QStringLiteral("execution reverted"));
    return StandInAnswer::ok(envelope(QStringLiteral("result"), result));
}

QJsonValue hex(quint64 number) {
    return HexQuantity{number}.toText();
}

QJsonValue blockAt(quint64 number, qint64 seconds) {
    return QJsonObject{{QStringLiteral("number"), hex(number)},
                       {QStringLiteral("timestamp"), hex(static_cast<quint64>(seconds))},
                       {QStringLiteral("transactions"), QJsonArray()}};
}

} // namespace torvane
