#include "SnapshotServer.h"

#include <QCryptographicHash>
#include <QFile>

#include <atomic>
#include <chrono>
#include <httplib.h>
#include <mutex>
#include <thread>

namespace torvane {

namespace {

constexpr std::size_t threads = 4; // Of which each connection that is kept open takes one.

struct Served {
    std::string document;
    std::string validator;
};

Served served(const QByteArray& document) {
    const QByteArray hash = QCryptographicHash::hash(document, QCryptographicHash::Sha256).toHex().first(32);
    return {document.toStdString(), '"' + hash.toStdString() + '"'};
}

/// Whether the client has this version already: If-None-Match lists validators, weak ones too, or a star.
bool hasValidator(const std::string& field, const std::string& validator) {
    return field == "*" || field.find(validator) != std::string::npos;
}

/// The library's own options let a second server share the port.
void setSocketOptions(int socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

bool setUp(SSL_CTX& context, const ServerCertificate& certificate) {
    SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION);
    return SSL_CTX_use_certificate_chain_file(&context, QFile::encodeName(certificate.certificate)) == 1 &&
           SSL_CTX_use_PrivateKey_file(&context, QFile::encodeName(certificate.key), SSL_FILETYPE_PEM) == 1;
}

} // namespace

class SnapshotServer::Implementation final {
public:
    Implementation(const ServerCertificate& certificate, const std::string& host, int port)
        : m_server([certificate](SSL_CTX& context) { return setUp(context, certificate); }) {
        m_server.set_socket_options(&setSocketOptions);
        m_server.set_payload_max_length(0);
        m_server.new_task_queue = [] { return new httplib::ThreadPool(threads); };
        m_server.Get("/snapshot.json", [this](const httplib::Request& request, httplib::Response& response) {
            answer(request, response);
        });
        m_port = port == 0 ? m_server.bind_to_any_port(host) : port;
        if (!m_server.is_valid() || m_port < 0 || (port != 0 && !m_server.bind_to_port(host, port)))
            throw ListenFailure();
        m_thread = std::thread([this] {
            m_server.listen_after_bind();
            m_hasEnded = true;
        });
        while (!m_server.is_running() && !m_hasEnded) // It cannot be stopped before it runs.
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    ~Implementation() {
        m_server.stop();
        m_thread.join();
    }

    int port() const { return m_port; }

    void serve(const Served& document) {
        const std::scoped_lock lock(m_mutex);
        m_served = document;
    }

private:
    Served current() {
        const std::scoped_lock lock(m_mutex);
        return m_served;
    }

    void answer(const httplib::Request& request, httplib::Response& response) {
        const Served now = current();
        if (now.document.empty()) {
            response.status = 503;
            response.set_header("Retry-After", "10");
            return;
        }
        response.set_header("ETag", now.validator);
        response.set_header("Cache-Control", "max-age=30");
        if (hasValidator(request.get_header_value("If-None-Match"), now.validator))
            response.status = 304;
        else
            response.set_content(now.document, "application/json");
    }

    httplib::SSLServer m_server;
    std::atomic<bool> m_hasEnded = false;
    std::thread m_thread;
    std::mutex m_mutex;
    Served m_served;
    int m_port = 0;
};

SnapshotServer::SnapshotServer(const ServerCertificate& certificate, const QString& host, int port)
    // "localhost" may be an address of IPv6 first, where clients do not look first.
    : m_implementation(std::make_unique<Implementation>(
          certificate, host == QLatin1String("localhost") ? std::string("127.0.0.1") : host.toStdString(), port)) {}

SnapshotServer::~SnapshotServer() = default;

int SnapshotServer::port() const {
    return m_implementation->port();
}

void SnapshotServer::serve(const QByteArray& document) {
    m_implementation->serve(served(document));
}

} // namespace torvane
