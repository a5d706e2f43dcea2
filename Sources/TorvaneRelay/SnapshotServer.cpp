#include "SnapshotServer.h"

#include <QCryptographicHash>
#include <QFile>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <httplib.h>
#include <mutex>
#include <thread>

namespace torvane {

namespace {

constexpr std::uintptr_t mostReceived = 64 * 1024; // On one connection, which brings a few requests at most.
constexpr std::size_t threads = 4;                 // Of which each connection that is kept open takes one.

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

/// OpenSSL's message callback: sees the head of each record, which ends with its length (RFC 8446, 5.1). The library
/// keeps header lines for as long as a client sends some, so that whoever sends too much is cut off here.
void limitReceived(int isSent, int, int content, const void* record, std::size_t, SSL* connection, void*) {
    static const int place = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    if (isSent != 0 || content != SSL3_RT_HEADER)
        return;
    const auto* head = static_cast<const unsigned char*>(record);
    auto received = reinterpret_cast<std::uintptr_t>(SSL_get_ex_data(connection, place));
    received += static_cast<std::uintptr_t>(head[3]) * 256 + head[4];
    SSL_set_ex_data(connection, place, reinterpret_cast<void*>(received));
    if (received > mostReceived)
        ::shutdown(SSL_get_fd(connection), SHUT_RDWR);
}

bool setUp(SSL_CTX& context, const ServerCertificate& certificate) {
    SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION);
    SSL_CTX_set_msg_callback(&context, &limitReceived);
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
