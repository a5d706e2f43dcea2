#pragma once

#include <QString>

#include <exception>

namespace torvane {

/// A certificate that can be neither used nor made; says why.
class CertificateFailure final : public std::exception {
public:
    explicit CertificateFailure(const QString& what)
        : m_what(what.toUtf8()) {}

    const char* what() const noexcept override { return m_what.constData(); }

private:
    QByteArray m_what;
};

/// The certificate of a server for one user alone: it signs itself, so that whoever trusts this file trusts this server
/// and no other. Its private key lies beside it, for its owner's eyes alone.
struct ServerCertificate {
    QString certificate; ///< path of a PEM file
    QString key;

    /// The one at this path as long as it serves this host, or a new one: for localhost, this machine's loopback
    /// addresses and the host, with a key on P-256, for ten years. A certificate that is not ours, which has no key
    /// beside it, is left alone: throws CertificateFailure.
    static ServerCertificate at(const QString& path, const QString& host);
};

} // namespace torvane
