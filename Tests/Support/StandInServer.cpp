#include "Support/StandInServer.h"

#include "Support/StandInConnection.h"

#include <QFile>
#include <QFileInfo>
#include <QSslKey>

namespace torvane {

namespace {

QSslKey keyBeside(const QString& certificate) {
    const QFileInfo info(certificate);
    QFile file(info.path() + QLatin1Char('/') + info.completeBaseName() + QLatin1String(".key"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("No key: %s", qUtf8Printable(file.fileName()));
    return QSslKey(&file, QSsl::Ec);
}

} // namespace

QByteArray StandInRequest::header(QByteArrayView name) const {
    for (const auto& [each, value] : headers) {
        if (each.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

StandInServer::StandInServer(const QString& certificate, quint16 port, QObject* parent)
    : QObject(parent)
    , m_port(port) {
    m_listener.setSslConfiguration(tlsConfiguration(certificate));
    connect(&m_listener, &QSslServer::pendingConnectionAvailable, this, &StandInServer::accept);
    start();
}

StandInServer::~StandInServer() {
    stop();
}

QString StandInServer::certificatePath(const char* name) {
    return QStringLiteral(TORVANE_TEST_CERTIFICATES "/") + QLatin1String(name) + QLatin1String(".pem");
}

QSslConfiguration StandInServer::tlsConfiguration(const QString& certificate) {
    const QList<QSslCertificate> chain = QSslCertificate::fromPath(certificate);
    if (chain.isEmpty())
        qFatal("No certificate: %s", qUtf8Printable(certificate));
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificateChain(chain);
    tls.setPrivateKey(keyBeside(certificate));
    tls.setPeerVerifyMode(QSslSocket::VerifyNone); // Clients need not prove who they are.
    return tls;
}

void StandInServer::offer(const QList<QByteArray>& protocols) {
    QSslConfiguration tls = m_listener.sslConfiguration();
    tls.setAllowedNextProtocols(protocols);
    m_listener.setSslConfiguration(tls);
}

void StandInServer::on(const QByteArray& path, Handler handler) {
    m_handlers.insert(path, std::move(handler));
}

void StandInServer::on(const QByteArray& path, const StandInAnswer& answer) {
    on(path, [answer](const StandInRequest&) { return answer; });
}

quint16 StandInServer::port() const {
    return m_port;
}

QUrl StandInServer::url(const QString& path, const QString& host) const {
    QUrl url(path);
    url.setScheme(QStringLiteral("https"));
    url.setHost(host);
    url.setPort(m_port);
    return url;
}

QString StandInServer::host() const {
    return url({}).authority();
}

const QList<StandInRequest>& StandInServer::requests() const {
    return m_requests;
}

void StandInServer::clearRequests() {
    m_requests.clear();
}

int StandInServer::connectionCount() const {
    return m_connectionCount;
}

int StandInServer::openConnectionCount() const {
    return static_cast<int>(m_connections.size());
}

void StandInServer::closeConnections(StandInAnswer::Ending ending) {
    const QList<StandInConnection*> connections = m_connections; // Ending one removes it from the list.
    for (StandInConnection* connection : connections)
        connection->end(ending);
}

void StandInServer::stop() {
    m_listener.close();
    closeConnections(StandInAnswer::Ending::reset);
}

void StandInServer::start() {
    if (!m_listener.listen(QHostAddress::LocalHost, m_port))
        qFatal("No port %d: %s", m_port, qUtf8Printable(m_listener.errorString()));
    m_port = m_listener.serverPort();
}

void StandInServer::accept() {
    while (auto* socket = qobject_cast<QSslSocket*>(m_listener.nextPendingConnection())) {
        auto* connection = new StandInConnection(socket, ++m_connectionCount, *this);
        m_connections.append(connection);
        connect(connection, &StandInConnection::ended, this, [this](StandInConnection* ended) {
            m_connections.removeOne(ended);
            ended->deleteLater();
        });
    }
}

StandInAnswer StandInServer::answer(const StandInRequest& request) {
    m_requests.append(request);
    Q_EMIT requested(request);
    const QByteArray path = request.target.first(qMax<qsizetype>(0, (request.target + '?').indexOf('?')));
    const auto handler = m_handlers.constFind(path);
    // By value: the handler may replace itself.
    const Handler found = handler == m_handlers.cend() ? nullptr : *handler;
    return found ? found(request) : StandInAnswer::status(404, "nothing here");
}

} // namespace torvane
