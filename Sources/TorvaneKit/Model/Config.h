#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

/// The build-time constants that point the program at the outside world. Read-only, initialised at the first read,
/// safe to read from any thread. Which values stand behind them is chosen by the library that a program links.
namespace torvane::Config {

/// The relay's snapshot document: HTTPS, path "/snapshot.json".
const QUrl& snapshotURL();

/// The gas tracker's page on the explorer's web site.
const QUrl& etherscanGasURL();

/// The update feed on the relay's host, path "/torvane/appcast.xml".
const QUrl& appcastURL();

/// The key that updates must be signed with: base64 of an Ed25519 public key (RFC 8032), or empty where the build takes
/// no updates.
const QString& updatePublicKey();

/// The program's version, for example "0.3.0".
const QString& currentVersion();

/// Public Ethereum JSON-RPC endpoints, primary first: exactly two bare HTTPS origins.
const QStringList& ethereumRPCURLs();

/// Absolute path of a PEM file that is trusted beside the system's store, for the relay's host and for loopback hosts
/// alone. The file need not exist.
const QString& trustAnchorPath();

} // namespace torvane::Config
