#pragma once

#include <QByteArray>
#include <QUrl>

/// Whose certificates a connection accepts: the system's store, and beside it the trust anchor for its own hosts alone.
namespace torvane::TrustStore {

/// Options of one connection, as libcurl takes them; an empty one is switched off.
struct Trust final {
    QByteArray folder; // CURLOPT_CAPATH
    QByteArray file;   // CURLOPT_CAINFO
    QByteArray bundle; // CURLOPT_CAINFO_BLOB: PEM text, in the place of `file`
    bool operator==(const Trust&) const = default;
};

/// Where the system keeps its certificates: a folder of hashed links, or else one file.
struct SystemStore final {
    QByteArray folder;
    QByteArray file;
};

/// Looks below this directory, /etc/ssl/certs on Debian.
SystemStore systemStore(const QString& directory);

/// The system's store with the anchor, a path, beside it; an empty path adds nothing.
Trust combine(const SystemStore& system, const QString& anchor);

/// Whether the host is this machine: "localhost", 127.0.0.0/8 in four decimal parts, "::1".
bool isLoopback(const QString& host);

/// What a connection to this address accepts now. The anchor is in force for the relay's host and for loopback hosts,
/// if its file can be read at this moment.
Trust forURL(const QUrl& url);

} // namespace torvane::TrustStore
