#pragma once

#include "ServerCertificate.h"

#include <QByteArray>
#include <QString>

#include <exception>
#include <memory>

namespace torvane {

/// An address that cannot be listened on.
class ListenFailure final : public std::exception {
public:
    const char* what() const noexcept override { return "the port is taken, or the host is not this machine's"; }
};

/// Serves one document at /snapshot.json over HTTPS, from memory and from threads of its own: with a validator, so that
/// an unchanged document is not sent again (RFC 9110, 13.1.2). Before there is a document, 503.
class SnapshotServer final {
public:
    /// Listens at once; port 0 takes a free one. Throws ListenFailure.
    SnapshotServer(const ServerCertificate& certificate, const QString& host, int port);
    ~SnapshotServer();

    SnapshotServer(const SnapshotServer&) = delete;
    SnapshotServer& operator=(const SnapshotServer&) = delete;

    int port() const;

    /// From now on this is the document.
    void serve(const QByteArray& document);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace torvane
