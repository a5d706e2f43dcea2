#include "TorvaneUpdates/Signature.h"

#include "Support/FileDescriptor.h"
#include "TorvaneUpdates/Appcast.h"

#include <sodium.h>

#include <sys/stat.h>

namespace torvane::Updates {

namespace {

const unsigned char* unsignedBytes(const QByteArray& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

bool hasStarted() {
    static const bool started = sodium_init() >= 0;
    return started;
}

/// The file's length; whatever is no regular file of a sane one is refused.
qint64 lengthOf(int descriptor) {
    struct stat file {};
    if (::fstat(descriptor, &file) != 0 || !S_ISREG(file.st_mode))
        throw SignatureFailure("The update cannot be read.");
    if (file.st_size > largestPayload)
        throw SignatureFailure("The update is too large.");
    return file.st_size;
}

/// Not mapped but read: a mapped file that is cut short meanwhile ends the program.
QByteArray contentOf(int descriptor) {
    QByteArray bytes(lengthOf(descriptor), Qt::Uninitialized);
    qsizetype filled = 0;
    while (filled < bytes.size()) {
        const auto room = static_cast<std::size_t>(bytes.size() - filled);
        const ssize_t count = uninterrupted([&] { return ::pread(descriptor, bytes.data() + filled, room, filled); });
        if (count <= 0)
            throw SignatureFailure("The update cannot be read.");
        filled += count;
    }
    return bytes;
}

} // namespace

std::optional<PublicKey> PublicKey::fromBase64(const QString& text) {
    const auto decoded = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    const QByteArray key = decoded ? *decoded : QByteArray();
    const bool isKey = key.size() == qsizetype(crypto_sign_PUBLICKEYBYTES) && hasStarted() &&
                       crypto_core_ed25519_is_valid_point(unsignedBytes(key)) == 1;
    return isKey ? std::optional(PublicKey(key)) : std::nullopt;
}

void verifySignature(int descriptor, const PublicKey& key, const QByteArray& signature) {
    if (signature.size() != qsizetype(crypto_sign_BYTES))
        throw SignatureFailure("The update is not signed.");
    const QByteArray bytes = contentOf(descriptor);
    const auto size = static_cast<unsigned long long>(bytes.size());
    if (crypto_sign_verify_detached(unsignedBytes(signature), unsignedBytes(bytes), size, unsignedBytes(key.bytes())) !=
        0)
        throw SignatureFailure("The update's signature is wrong: it does not come from this program's makers.");
}

} // namespace torvane::Updates
