#pragma once

#include "Support/StandInAnswer.h"

#include <QHash>
#include <QSslConfiguration>
#include <QSslServer>
#include <QUrl>

#include <functional>

namespace torvane {

class StandInConnection;

/// A request as it arrived.
struct StandInRequest final {
    QByteArray method;
    QByteArray target; // path and query
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    QByteArray protocol; // What the TLS handshake agreed on, if it offered any.
    int connection = 0;  // The how-manieth connection of the server it came on, from 1.

    /// The value of a header, its name in any case; null where it is missing.
    QByteArray header(QByteArrayView name) const;
};

/// An HTTPS server (HTTP/1.1, keep-alive, real TLS) on a loopback address that answers as it is told and records what
/// it is asked. It runs on the loop of its thread.
///     StandInServer server;
///     server.on("/snapshot.json", [](const StandInRequest&) { return StandInAnswer::ok("{}"); });
class StandInServer final : public QObject {
    Q_OBJECT

public:
    using Handler = std::function<StandInAnswer(const StandInRequest&)>;

    /// Listens at once; port 0 takes a free one. `certificate` is the path of a PEM file; its key lies beside it in a
    /// file of the suffix "key". Ends the program when either cannot be had.
    explicit StandInServer(const QString& certificate = certificatePath("localhost"), quint16 port = 0,
                           QObject* parent = nullptr);
    ~StandInServer() override;

    /// Path of a certificate that the build made: "ca", "localhost", "otherhost", "expired", "stranger", "strangerca".
    static QString certificatePath(const char* name);

    /// What a TLS server with this certificate needs.
    static QSslConfiguration tlsConfiguration(const QString& certificate);

    /// The protocols that handshakes offer from now on (ALPN), best first. None are offered until then.
    void offer(const QList<QByteArray>& protocols);

    /// Answers requests for this path, the query apart. Paths that nobody answers get a 404.
    void on(const QByteArray& path, Handler handler);
    void on(const QByteArray& path, const StandInAnswer& answer);

    quint16 port() const;
    QUrl url(const QString& path, const QString& host = QStringLiteral("localhost")) const;

    /// "localhost:PORT", as an address for TestConfig.
    QString host() const;

    /// All requests since the start or since they were cleared, in order.
    const QList<StandInRequest>& requests() const;
    void clearRequests();

    /// How many connections finished their TLS handshake since the start, and how many of these are open.
    int connectionCount() const;
    int openConnectionCount() const;

    /// Ends all open connections in this way: closeNotify, abruptClose or reset.
    void closeConnections(StandInAnswer::Ending ending);

    /// Closes the port and resets what is open; start() listens on the same port again.
    void stop();
    void start();

Q_SIGNALS:
    void requested(const StandInRequest& request);

private:
    friend class StandInConnection;

    void accept();
    StandInAnswer answer(const StandInRequest& request);

    QSslServer m_listener;
    QHash<QByteArray, Handler> m_handlers;
    QList<StandInRequest> m_requests;
    QList<StandInConnection*> m_connections;
    int m_connectionCount = 0;
    quint16 m_port;
};

} // namespace torvane
