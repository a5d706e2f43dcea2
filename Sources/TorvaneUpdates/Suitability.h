#pragma once

#include "TorvaneUpdates/Appcast.h"

#include <optional>

namespace torvane::Updates {

/// The machine, as this program runs on it, and as items of a feed speak of it.
struct System final {
    QString version;      // of the kernel, for example "6.1.0-18-amd64": a dash ends what counts
    QString architecture; // that the program is built for, for example "x86_64"

    static System current();
};

/// Whom and what an update has to suit.
struct Suitability final {
    QString runningVersion;
    QString product; // of the running program, as payloads name it
    System system;
    QDateTime now;
    double rolloutPlace = 0;  // 0 to below 1, drawn once per installation: early ones get a phased update first
    QString skippedVersion{}; // what its user does not want to be told of, nor of anything older; empty: nothing
    bool isAskedFor = false;  // by hand: nothing is held back, and nothing is skipped
};

/// The highest version above the running one that suits this machine, this installation and this moment; the first of
/// equal ones. Of an item that is critical for older versions alone, it is settled whether it is for this one.
/// - `os`: none or "linux". `minimumSystemVersion` is compared with the kernel's version, the one number
///   that all Linux systems have in common.
/// - `channel`: the one for everybody alone.
/// - a phased update reaches a seventh of the installations at its date, and another one after each interval.
/// - a critical update is neither held back nor skipped.
std::optional<AppcastItem> bestItem(const QList<AppcastItem>& items, const Suitability& to);

} // namespace torvane::Updates
