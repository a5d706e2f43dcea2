#pragma once

#include <QString>

/// The tests' Config: the same functions, with addresses that a fixture sets at run time, since servers listen on port
/// 0.
namespace torvane::TestConfig {

/// Sets snapshotURL and appcastURL to this host[:port].
void setRelayHost(const QString& host);

/// Sets the two Ethereum endpoints.
void setEthereumRPCURLs(const QString& primary, const QString& fallback);

/// Sets the key that updates must be signed with; there is none at first.
void setUpdatePublicKey(const QString& key);

/// Sets the PEM file that is trusted for the relay's host and for loopback hosts.
void setTrustAnchorPath(const QString& path);

} // namespace torvane::TestConfig
