#include "Support/StandInRelay.h"

#include "Support/Clock.h"
#include "Support/JSON.h"
#include "Support/SimulatedMarket.h"
#include "Support/StandInNodes.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTimer>

#include <charconv>

namespace torvane {

namespace {

using namespace std::chrono_literals;

/// As relays do: a new document each five minutes.
constexpr qint64 secondsPerDocument = 300;

std::optional<double> number(const QByteArray& text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.cbegin(), text.cend(), value);
    return error == std::errc() && end == text.cend() ? std::optional(value) : std::nullopt;
}

/// The document with a cache's validator and a freshness, as a static host serves it.
StandInAnswer asFile(const QByteArray& body, const StandInRequest& request) {
    const QByteArray tag = '"' + QCryptographicHash::hash(body, QCryptographicHash::Sha1).toHex() + '"';
    const auto withValidator = [&tag](const StandInAnswer& answer) {
        return answer.header("ETag", tag).header("Cache-Control", "max-age=30");
    };
    if (request.header("If-None-Match") == tag)
        return withValidator(StandInAnswer::status(304));
    const StandInAnswer whole = withValidator(StandInAnswer::ok(body)).header("Content-Type", "application/json");
    return request.header("Accept-Encoding").contains("gzip") ? whole.gzipped() : whole;
}

StandInAnswer misbehaving(const QByteArray& kind, const QByteArray& body) {
    if (kind.startsWith("status "))
        return StandInAnswer::status(kind.mid(7).toInt(), "not today");
    if (kind.startsWith("redirect "))
        return StandInAnswer::redirect(302, kind.mid(9));
    if (kind == "drip")
        return StandInAnswer::ok(body).dripped(1, 1s);
    if (kind == "truncate")
        return StandInAnswer::ok(body).cutShort(body.size() / 2, StandInAnswer::Ending::abruptClose);
    if (kind == "endless")
        return StandInAnswer::endlessBody();
    if (kind == "silence")
        return StandInAnswer::silent();
    if (kind == "off")
        return StandInAnswer::ok({}).cutShortInHead(0, StandInAnswer::Ending::reset);
    if (kind == "error")
        return StandInAnswer::ok(StandInNodes::refusal());
    return StandInAnswer::ok("{\"generatedAt\": garbage");
}

bool isKind(const QByteArray& kind) {
    static const QList<QByteArray> plain{"normal", "drip", "truncate", "endless", "garbage", "silence", "off"};
    if (kind.startsWith("status "))
        return kind.mid(7).toInt() >= 100 && kind.mid(7).toInt() <= 999;
    return plain.contains(kind) || kind.startsWith("redirect ");
}

/// A network's name as a part of an address.
QString pathPart(const QString& network) {
    return network.toLower().replace(QLatin1Char(' '), QLatin1Char('-'));
}

} // namespace

StandInRelay::StandInRelay(quint16 port, QObject* parent)
    : QObject(parent) {
    listen(StandInServer::certificatePath("localhost"), port);
}

void StandInRelay::listen(const QString& certificate, quint16 port) {
    m_server.reset(); // Its port must be free before the next one listens.
    m_server = std::make_unique<StandInServer>(certificate, port);
    m_server->on("/snapshot.json", [this](const StandInRequest& request) { return answerSnapshot(request); });
    m_server->on("/control", [this](const StandInRequest& request) { return answerControl(request.body.trimmed()); });
    listenForNodes();
    listenForUpdates();
}

void StandInRelay::listenForUpdates() {
    if (m_published.isEmpty())
        return; // An empty path would be the current folder.
    for (const QString& name : QDir(m_published).entryList(QDir::Files)) {
        const QByteArray path = "/torvane/" + QFile::encodeName(name);
        m_server->on(path, [this](const StandInRequest& request) { return answerUpdate(request); });
    }
}

void StandInRelay::listenForNodes() {
    m_server->on("/", [this](const StandInRequest& request) {
        return answerNode(request, StandInNodes::ethereum(request.body, marketTime(), m_baseFee));
    });
    for (const L2Entry& entry : SimulatedMarket::at(Clock::now()).l2) {
        const auto answerNetwork = [this, name = entry.name](const StandInRequest& request) {
            const std::optional<double> price = SimulatedMarket::gasPrice(name, marketTime());
            return price ? answerNode(request, StandInNodes::l2(request.body, *price)) : StandInAnswer::status(404);
        };
        m_server->on("/rpc/" + pathPart(entry.name).toLatin1(), answerNetwork);
    }
}

QDateTime StandInRelay::marketTime() const {
    return m_moment.value_or(Clock::now());
}

/// A document with an ordered base fee, or of an ordered moment, is one of its own, and stays until the next order.
QDateTime StandInRelay::documentTime() const {
    if (m_baseFee || m_moment)
        return m_orderedAt;
    const qint64 seconds = Clock::now().toSecsSinceEpoch();
    return QDateTime::fromSecsSinceEpoch(seconds - seconds % secondsPerDocument, Qt::UTC);
}

Snapshot StandInRelay::document() const {
    const QDateTime time = documentTime();
    Snapshot snapshot = SimulatedMarket::at(m_moment.value_or(time));
    snapshot.generatedAt = time.toUTC().toString(Qt::ISODateWithMs);
    for (L2Entry& entry : snapshot.l2) {
        if (SimulatedMarket::gasPrice(entry.name, time))
            entry.rpc = {m_server->url(QStringLiteral("/rpc/") + pathPart(entry.name)).toString()};
    }
    if (m_baseFee) {
        GasData& gas = snapshot.gas;
        const double scale = *m_baseFee / gas.baseFee;
        for (double* price : {&gas.baseFee, &gas.low, &gas.avg, &gas.high})
            *price *= scale;
    }
    return snapshot;
}

StandInAnswer StandInRelay::answerSnapshot(const StandInRequest& request) const {
    const QByteArray body = JSON::encode(document());
    return m_kind == "normal" ? asFile(body, request) : misbehaving(m_kind, body);
}

StandInAnswer StandInRelay::answerUpdate(const StandInRequest& request) const {
    const QString name = QFile::decodeName(request.target.mid(request.target.lastIndexOf('/') + 1));
    QFile file(QDir(m_published).filePath(name));
    if (!file.open(QIODevice::ReadOnly))
        return StandInAnswer::status(404);
    const QByteArray body = file.readAll();
    return m_updatesKind == "normal" ? StandInAnswer::ok(body) : misbehaving(m_updatesKind, body);
}

StandInAnswer StandInRelay::answerNode(const StandInRequest& request, const QByteArray& body) const {
    if (request.method != "POST")
        return StandInAnswer::status(405, "POST a JSON-RPC request");
    if (m_nodesKind != "normal")
        return misbehaving(m_nodesKind, body);
    return StandInAnswer::ok(body).header("Content-Type", "application/json");
}

StandInAnswer StandInRelay::answerControl(const QByteArray& order) {
    const qsizetype blank = order.indexOf(' ');
    const QByteArray name = order.left(blank < 0 ? order.size() : blank);
    const QByteArray value = blank < 0 ? QByteArray() : order.mid(blank + 1);
    return obeys(name, value) ? StandInAnswer::status(204) : StandInAnswer::status(400, "Not understood: " + order);
}

bool StandInRelay::obeys(const QByteArray& name, const QByteArray& value) {
    if (name == "baseFee")
        return setBaseFee(value);
    if (name == "moment")
        return setMoment(value);
    if (name == "certificate")
        return setCertificate(value);
    if (name == "publish")
        return publish(value);
    if (name == "updates" && isKind(value)) {
        m_updatesKind = value;
        return true;
    }
    if (name == "nodes" && (isKind(value) || value == "error")) {
        m_nodesKind = value;
        return true;
    }
    if (name != "answer" || !isKind(value))
        return false;
    m_kind = value;
    return true;
}

bool StandInRelay::setBaseFee(const QByteArray& value) {
    const std::optional<double> fee = number(value);
    const bool isPrice = fee && *fee >= 0 && *fee < 1e9; // Not a number fails both.
    if (!isPrice && !value.isEmpty())
        return false;
    m_baseFee = fee;
    m_orderedAt = Clock::now();
    return true;
}

bool StandInRelay::setMoment(const QByteArray& value) {
    const QDateTime moment = QDateTime::fromString(QString::fromLatin1(value), Qt::ISODate);
    // A time of day without its offset would be this machine's.
    if (!value.isEmpty() && (!moment.isValid() || moment.timeSpec() == Qt::LocalTime))
        return false;
    m_moment = value.isEmpty() ? std::nullopt : std::optional(moment);
    m_orderedAt = Clock::now();
    return true;
}

bool StandInRelay::publish(const QByteArray& folder) {
    const QString path = QFile::decodeName(folder);
    if (!QDir(path).isAbsolute() || !QDir(path).exists())
        return false;
    m_published = path;
    listenForUpdates();
    return true;
}

bool StandInRelay::setCertificate(const QByteArray& name) {
    if (!QList<QByteArray>{"localhost", "otherhost", "expired", "stranger"}.contains(name))
        return false;
    const QString path = StandInServer::certificatePath(name.constData());
    // Once this order is answered: the server that answers it goes.
    QTimer::singleShot(100ms, this, [this, path] { listen(path, m_server->port()); });
    return true;
}

} // namespace torvane
