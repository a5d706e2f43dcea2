#include "AnvilNode.h"

#include "Chain/JSONRPC.h"
#include "Support/StandInServer.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>

#include <csignal>
#include <sys/prctl.h>

namespace torvane {

namespace {

constexpr int limitMs = 60'000;

/// The port that the node says it listens on, once it has said so.
quint16 listeningPort(QProcess& process) {
    static const QRegularExpression line(QStringLiteral("Listening on 127\\.0\\.0\\.1:(\\d+)"));
    QString output;
    while (process.waitForReadyRead(limitMs)) {
        output += QString::fromUtf8(process.readAll());
        const QRegularExpressionMatch match = line.match(output);
        if (match.hasMatch())
            return match.captured(1).toUShort();
    }
    qFatal("The node does not start: %s", qUtf8Printable(output + process.errorString()));
}

QByteArray posted(const QUrl& url, const QByteArray& body) {
    QNetworkAccessManager network;
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setTransferTimeout(limitMs);
    const std::unique_ptr<QNetworkReply> reply(network.post(request, body));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return reply->readAll();
}

/// Bytes go from one socket to the other, and the end of one ends the other.
void join(QTcpSocket* from, QTcpSocket* to) {
    QObject::connect(from, &QTcpSocket::readyRead, to, [from, to] { to->write(from->readAll()); });
    QObject::connect(from, &QTcpSocket::disconnected, to, &QTcpSocket::disconnectFromHost);
    QObject::connect(from, &QTcpSocket::disconnected, from, &QObject::deleteLater);
}

} // namespace

AnvilNode::AnvilNode(const QStringList& arguments) {
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    const QStringList always{QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--no-mining")};
    // A test that is killed must not leave its nodes behind.
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process.start(QStringLiteral(TORVANE_ANVIL), always + arguments);
    m_port = listeningPort(m_process);
    m_listener.setSslConfiguration(StandInServer::tlsConfiguration(StandInServer::certificatePath("localhost")));
    connect(&m_listener, &QSslServer::pendingConnectionAvailable, this, &AnvilNode::forward);
    if (!m_listener.listen(QHostAddress::LocalHost))
        qFatal("No port: %s", qUtf8Printable(m_listener.errorString()));
}

AnvilNode::~AnvilNode() {
    m_process.kill(); // It keeps nothing.
    m_process.waitForFinished();
}

QUrl AnvilNode::url() const {
    QUrl url(QStringLiteral("https://localhost"));
    url.setPort(m_listener.serverPort());
    return url;
}

void AnvilNode::forward() {
    while (QTcpSocket* outer = m_listener.nextPendingConnection()) {
        auto* inner = new QTcpSocket(this);
        join(outer, inner);
        join(inner, outer);
        inner->connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
    }
}

QJsonValue AnvilNode::call(const QString& method, const QJsonArray& parameters) const {
    const QJsonObject question{{QStringLiteral("jsonrpc"), QStringLiteral("2.0")},
                               {QStringLiteral("id"), 1},
                               {QStringLiteral("method"), method},
                               {QStringLiteral("params"), parameters}};
    QUrl address(QStringLiteral("http://127.0.0.1"));
    address.setPort(m_port);
    const QByteArray answer = posted(address, QJsonDocument(question).toJson(QJsonDocument::Compact));
    const QJsonObject object = QJsonDocument::fromJson(answer).object();
    if (!object.contains(QStringLiteral("result")))
        qFatal("%s: %s", qUtf8Printable(method), answer.constData());
    return object[QStringLiteral("result")];
}

void AnvilNode::mine(quint64 baseFee, const QList<quint64>& priorityFees) {
    const auto text = [](quint64 wei) { return HexQuantity{wei}.toText(); };
    const QJsonValue accounts = call(QStringLiteral("eth_accounts"));
    call(QStringLiteral("anvil_setNextBlockBaseFeePerGas"), {text(baseFee)});
    for (qsizetype i = 0; i < priorityFees.size(); ++i) {
        // Each from an account of its own: those of one account must keep their order, which is not that of the fees.
        const QJsonValue account = accounts[i];
        const QJsonObject transfer{{QStringLiteral("from"), account},
                                   {QStringLiteral("to"), account},
                                   {QStringLiteral("value"), QStringLiteral("0x1")},
                                   {QStringLiteral("gas"), text(21'000)},
                                   {QStringLiteral("maxPriorityFeePerGas"), text(priorityFees[i])},
                                   {QStringLiteral("maxFeePerGas"), text(baseFee + priorityFees[i])}};
        call(QStringLiteral("eth_sendTransaction"), {transfer});
    }
    call(QStringLiteral("evm_mine"));
}

} // namespace torvane
