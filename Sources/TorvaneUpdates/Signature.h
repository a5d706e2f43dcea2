#pragma once

#include <QByteArray>
#include <QString>

#include <exception>
#include <optional>

namespace torvane::Updates {

/// An Ed25519 public key (RFC 8032) that can be verified with.
class PublicKey final {
public:
    /// From base64 (RFC 4648). None unless it is 32 bytes that encode a point of the curve in the one way that is
    /// right, in its large group: of keys in the small one, forged signatures are valid.
    static std::optional<PublicKey> fromBase64(const QString& text);

    const QByteArray& bytes() const { return m_bytes; }

private:
    explicit PublicKey(const QByteArray& bytes)
        : m_bytes(bytes) {}

    QByteArray m_bytes;
};

/// A file that is not what was signed, or cannot be read.
class SignatureFailure final : public std::exception {
public:
    explicit SignatureFailure(const QByteArray& text)
        : m_text(text) {}

    /// A sentence for people.
    const char* what() const noexcept override { return m_text.constData(); }

private:
    QByteArray m_text;
};

/// Verifies the whole file behind an open descriptor, wherever its reading position stands and without moving it.
/// Throws SignatureFailure unless this is a signature of it by this key. Reads all of it into memory: for a worker.
void verifySignature(int descriptor, const PublicKey& key, const QByteArray& signature);

} // namespace torvane::Updates
