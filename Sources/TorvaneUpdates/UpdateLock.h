#pragma once

#include "Support/FileDescriptor.h"

#include <QByteArray>

namespace torvane::Updates {

/// The right to replace the programs of one folder, which one process has at a time, for as long as this lives. It is
/// a lock on the folder itself (flock(2)), so that it leaves nothing behind, whatever becomes of the process.
class UpdateLock final {
public:
    explicit UpdateLock(const QByteArray& folder);

    /// Where the file system has no locks everyone has it: better than no updates at all.
    bool isHeld() const { return m_state != State::others; }

    /// Whether nobody else has it, for sure.
    bool isExclusive() const { return m_state == State::ours; }

private:
    enum class State { ours, others, unknown };

    State lock() const;

    FileDescriptor m_folder;
    State m_state;
};

} // namespace torvane::Updates
