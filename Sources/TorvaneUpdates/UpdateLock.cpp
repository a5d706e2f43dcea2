#include "TorvaneUpdates/UpdateLock.h"

#include <fcntl.h>
#include <sys/file.h>

namespace torvane::Updates {

UpdateLock::UpdateLock(const QByteArray& folder)
    : m_folder(uninterrupted([&] { return ::open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }))
    , m_state(lock()) {}

UpdateLock::State UpdateLock::lock() const {
    if (!m_folder.isOpen())
        return State::others;
    if (uninterrupted([&] { return ::flock(m_folder.get(), LOCK_EX | LOCK_NB); }) == 0)
        return State::ours;
    return errno == EWOULDBLOCK ? State::others : State::unknown;
}

} // namespace torvane::Updates
