#include "Chain/TrustStore.h"

#include "Model/Config.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace torvane::TrustStore {

namespace {

constexpr QLatin1StringView certificateFolder("/etc/ssl/certs");

/// A missing or empty file must not be handed to libcurl: it fails every request of the handle.
bool isUsable(const QString& path) {
    const QFileInfo file(path);
    return !path.isEmpty() && file.isFile() && file.isReadable() && file.size() > 0;
}

/// Not by a filter for names, since Qt makes a regular expression of it, whose engine nothing else here needs.
bool hasHashedLinks(const QString& directory) {
    QDirIterator files(directory, QDir::Files);
    while (files.hasNext()) {
        if (files.next().endsWith(QLatin1StringView(".0")))
            return true;
    }
    return false;
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool isByte(QStringView text) {
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    return !text.isEmpty() && text.size() <= 3 && std::all_of(text.cbegin(), text.cend(), isDigit) &&
           text.toInt() <= 255;
}

} // namespace

SystemStore systemStore(const QString& directory) {
    if (hasHashedLinks(directory))
        return {.folder = QFile::encodeName(directory), .file = {}};
    const QString bundle = directory + QStringLiteral("/ca-certificates.crt");
    return {.folder = {}, .file = isUsable(bundle) ? QFile::encodeName(bundle) : QByteArray()};
}

Trust combine(const SystemStore& system, const QString& anchor) {
    if (!isUsable(anchor))
        return {.folder = system.folder, .file = system.file, .bundle = {}};
    // libcurl adds a file to a folder, but puts it in the place of another file.
    if (system.file.isEmpty())
        return {.folder = system.folder, .file = QFile::encodeName(anchor), .bundle = {}};
    const QByteArray both = contents(QFile::decodeName(system.file)) + '\n' + contents(anchor);
    return {.folder = system.folder, .file = {}, .bundle = both};
}

bool isLoopback(const QString& host) {
    if (host == QLatin1String("localhost") || host == QLatin1String("::1"))
        return true;
    const QList<QStringView> parts = QStringView(host).split(u'.');
    return parts.size() == 4 && parts.first() == QLatin1String("127") &&
           std::all_of(parts.cbegin(), parts.cend(), isByte);
}

Trust forURL(const QUrl& url) {
    // The folder costs a look-up per handshake; libcurl's default, folder and file together, parses all 140
    // certificates (19 ms) at each.
    static const SystemStore system = systemStore(certificateFolder);
    const QString host = url.host();
    const bool isAnchored = isLoopback(host) || host == Config::snapshotURL().host();
    return combine(system, isAnchored ? Config::trustAnchorPath() : QString());
}

} // namespace torvane::TrustStore
