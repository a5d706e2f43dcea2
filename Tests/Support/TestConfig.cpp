#include "Support/TestConfig.h"

#include "Model/Config.h"

namespace torvane {

namespace {

QUrl g_snapshotURL(QStringLiteral("https://localhost:1/snapshot.json"));
QUrl g_appcastURL(QStringLiteral("https://localhost:1/torvane/appcast.xml"));
QStringList g_ethereumRPCURLs{QStringLiteral("https://localhost:1"), QStringLiteral("https://localhost:2")};
QString g_trustAnchorPath;
QString g_updatePublicKey;

} // namespace

namespace TestConfig {

void setRelayHost(const QString& host) {
    g_snapshotURL = QUrl(QStringLiteral("https://%1/snapshot.json").arg(host));
    g_appcastURL = QUrl(QStringLiteral("https://%1/torvane/appcast.xml").arg(host));
}

void setEthereumRPCURLs(const QString& primary, const QString& fallback) {
    g_ethereumRPCURLs = {primary, fallback};
}

void setTrustAnchorPath(const QString& path) {
    g_trustAnchorPath = path;
}

void setUpdatePublicKey(const QString& key) {
    g_updatePublicKey = key;
}

} // namespace TestConfig

namespace Config {

const QUrl& snapshotURL() {
    return g_snapshotURL;
}

const QUrl& etherscanGasURL() {
    static const QUrl url(QStringLiteral("https://explorer.invalid/gastracker"));
    return url;
}

const QUrl& appcastURL() {
    return g_appcastURL;
}

const QString& currentVersion() {
    static const QString version = QStringLiteral("0.3.0");
    return version;
}

const QString& updatePublicKey() {
    return g_updatePublicKey;
}

const QStringList& ethereumRPCURLs() {
    return g_ethereumRPCURLs;
}

const QString& trustAnchorPath() {
    return g_trustAnchorPath;
}

} // namespace Config

} // namespace torvane
