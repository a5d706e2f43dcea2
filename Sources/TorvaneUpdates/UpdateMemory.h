#pragma once

#include "Support/UserDefaults.h"

#include <QDateTime>

#include <chrono>

namespace torvane::Updates {

/// What is remembered of updates from run to run, among the user's defaults.
class UpdateMemory final {
public:
    explicit UpdateMemory(UserDefaults& defaults)
        : m_defaults(defaults) {}

    /// True unless the user has said otherwise.
    bool checksByItself() const;
    void setChecksByItself(bool does) const;

    /// How long until the next check: nothing where it is overdue, or where there was never one. A last check in the
    /// future, from when the clock was wrong, counts as one made now, and is remembered so.
    std::chrono::milliseconds untilNextCheck(const QDateTime& now, std::chrono::seconds interval) const;
    void noteCheck(const QDateTime& now) const;

    /// The version that the user does not want to hear of again.
    QString skippedVersion() const;
    void skip(const QString& version) const;

    /// The last version that the user was told of although this copy cannot be replaced: once is enough.
    QString announcedVersion() const;
    void noteAnnounced(const QString& version) const;

    /// From 0 to 1: how early this installation takes part in an update that is given out bit by bit. Drawn once.
    double rolloutPosition() const;

private:
    UserDefaults& m_defaults;
};

} // namespace torvane::Updates
