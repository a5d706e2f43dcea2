#pragma once

#include "Support/TemporaryFile.h"
#include "TorvaneUpdates/Obstacle.h"
#include "TorvaneUpdates/UpdateLock.h"

#include <functional>

namespace torvane::Updates {

/// The replacement of the program's file, from an empty file beside it to the new program in its place. One at a time:
/// it holds the folder's lock. Everything blocks, its end too, and throws UpdateFailure. Whatever becomes of it, and of
/// the process, the program's path names the old file or the new one as a whole; an end before `keep` brings the old
/// one back.
class Installation final {
public:
    /// Makes the file to be filled, of mode 0600 and in the program's own folder.
    explicit Installation(Executable executable);
    ~Installation();

    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

    /// Of the new file: for writing until `check`, for reading from then on.
    int descriptor() const { return m_file.descriptor(); }

    /// Waits until what was written is on the disk, ends the writing, and has the file looked at that was written:
    /// nothing has read it before, and nothing but this file can be put in place later.
    void check(qint64 length, const std::function<void(int descriptor)>& look);

    /// Puts the new file in the program's place, with its mode, and keeps the old one.
    void install();

    /// Puts the old file back.
    void rollBack();

    /// The new file stays, the old one goes.
    void keep();

    /// Removes what a killed process has left over, if there is anything and nobody is at it.
    static void removeLeftOvers(const Executable& executable);

private:
    void keepOld() const;
    void takePlace();
    void bringBack() const;

    const Executable m_executable;
    const QByteArray m_path;
    const UpdateLock m_lock;
    TemporaryFile m_file;
    bool m_isInstalled = false; // And may have to be taken back.
};

} // namespace torvane::Updates
