#include "Model/Config.h"

#include "Support/BaseDirectory.h"

#include <QDir>

namespace torvane::Config {

namespace {

/// An address that does not parse is a mistake in the build, which no run can mend.
QUrl address(const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != QLatin1String("https") || url.host().isEmpty())
        qFatal("Not an https URL: %s", qUtf8Printable(text));
    return url;
}

QUrl onRelay(const char* path) {
    return address(QStringLiteral("https://" TORVANE_RELAY_HOST) + QLatin1String(path));
}

} // namespace

const QUrl& snapshotURL() {
    static const QUrl url = onRelay("/snapshot.json");
    return url;
}

const QUrl& etherscanGasURL() {
    static const QUrl url = address(QStringLiteral("https://" TORVANE_EXPLORER_HOST "/gastracker"));
    return url;
}

const QUrl& appcastURL() {
    static const QUrl url = onRelay("/torvane/appcast.xml");
    return url;
}

const QString& updatePublicKey() {
    static const QString key = QStringLiteral(TORVANE_UPDATE_PUBLIC_KEY);
    return key;
}

const QString& currentVersion() {
    static const QString version = QStringLiteral(TORVANE_VERSION);
    return version;
}

const QStringList& ethereumRPCURLs() {
    static const QStringList urls{QStringLiteral(TORVANE_ETHEREUM_RPC_PRIMARY),
                                  QStringLiteral(TORVANE_ETHEREUM_RPC_FALLBACK)};
    return urls;
}

const QString& trustAnchorPath() {
    static const QString path =
        QDir(BaseDirectory::data() + QStringLiteral("/velisk")).absoluteFilePath(QStringLiteral(TORVANE_TRUST_ANCHOR));
    return path;
}

} // namespace torvane::Config
