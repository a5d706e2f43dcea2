#pragma once

#include "Support/Async.h"

#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

namespace torvane::Updates {

/// What the build says of itself.
struct Properties final {
    QUrl feed;          // RSS 2.0 with Sparkle's namespace, https
    QString publicKey;  // base64 of an Ed25519 key (RFC 8032); empty: this build takes no updates
    QString product;    // as the note inside the payload names it
    QString version;    // of the running program
    QString executable; // the file to replace
    std::chrono::seconds interval{std::chrono::hours{24}}; // between checks that nobody asked for
    std::chrono::seconds settling{10}; // what a check waits at the start or after a sleep: more urgent things go first
};

/// Starts the program in this file as the successor of the running one, which gives up its place in the session to it.
/// True once the successor has that place; the caller then ends the program. False when it failed to come up: the
/// running one has taken its place again.
using Relaunch = std::function<Task<bool>(QString executable)>;

} // namespace torvane::Updates
