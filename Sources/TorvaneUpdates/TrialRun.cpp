#include "TorvaneUpdates/TrialRun.h"

#include "Support/ChildProcess.h"
#include "TorvaneUpdates/UpdateFailure.h"

#include <QDeadlineTimer>
#include <QStringList>

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>

using namespace Qt::StringLiterals;

namespace torvane::Updates {

namespace {

/// A version is a line. Whatever says more is not asked for the rest.
constexpr qsizetype longestOutput = 4096;

[[noreturn]] void fail(const QString& sentence) {
    throw UpdateFailure(UpdateFault::doesNotRun, sentence);
}

/// Waits until one of them is readable, or closed by all its writers; false when the limit has passed.
template <std::size_t Count>
bool isAnyReadable(std::array<pollfd, Count>& descriptors, const QDeadlineTimer& limit) {
    const auto wait = [&] { return ::poll(descriptors.data(), Count, static_cast<int>(limit.remainingTime())); };
    return uninterrupted(wait) > 0;
}

bool hasEndedWithin(const QDeadlineTimer& limit, const ChildProcess& child) {
    std::array ending{pollfd{child.ending(), POLLIN, 0}};
    return isAnyReadable(ending, limit);
}

/// What comes out of the pipe until it is closed, the limit has passed or there is too much of it. What the child has
/// left running may keep the pipe open: its own end will do.
QByteArray outputOf(const ChildProcess& child, int pipe, const QDeadlineTimer& limit) {
    QByteArray output;
    std::array<char, 512> part;
    while (output.size() < longestOutput) {
        std::array both{pollfd{pipe, POLLIN, 0}, pollfd{child.ending(), POLLIN, 0}};
        if (!isAnyReadable(both, limit) || both.front().revents == 0)
            break;
        const ssize_t count = uninterrupted([&] { return ::read(pipe, part.data(), part.size()); });
        if (count <= 0)
            break;
        output.append(part.data(), count);
    }
    return output;
}

/// As a word of its own: 1.2 is not said by who says 1.2.3.
bool names(const QByteArray& output, QStringView version) {
    return QString::fromUtf8(output).simplified().split(u' ').contains(version);
}

ChildProcess start(int program, int output) {
    const QByteArray file = "/proc/self/fd/" + QByteArray::number(ChildProcess::programDescriptor);
    try {
        return ChildProcess({file, {"velisk", "--version"}, {"LC_ALL=C.UTF-8", "PATH=/usr/bin:/bin"}, output, program});
    } catch (const std::system_error& error) {
        fail(u"The new version cannot be started on this machine: "_s + QString::fromUtf8(error.what()) + u'.');
    }
}

} // namespace

void tryOut(int program, QStringView version, std::chrono::milliseconds limit, const std::stop_token& stop) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        fail(u"The new version cannot be tried: too many files are open."_s);
    FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    const ChildProcess child = start(program, writing.get());
    writing = FileDescriptor(-1); // Only the child's is left, whose end is the output's.
    const QDeadlineTimer deadline(limit);
    QByteArray output;
    bool hasEnded = false;
    {
        const std::stop_callback end(stop, [&child] { child.kill(); });
        output = outputOf(child, reading.get(), deadline);
        reading = FileDescriptor(-1); // One that says ever more is ended by the next word.
        hasEnded = hasEndedWithin(deadline, child);
    }
    child.kill(); // If it hangs; and whatever it has left running. It has its number until it is reaped.
    const int status = child.reap();
    if (!hasEnded)
        fail(u"The new version does not start on this machine: it hangs."_s);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        fail(u"The new version does not run on this machine."_s);
    if (!names(output, version))
        fail(u"The new version calls itself another one than it was announced as."_s);
}

} // namespace torvane::Updates
