#pragma once

#include "Support/FileDescriptor.h"

#include <QByteArray>
#include <QList>

#include <sys/types.h>

namespace torvane {

/// What to start: a program with nothing of ours but what is named here.
struct Command final {
    QByteArray file;             // its path
    QList<QByteArray> arguments; // the name of the program first
    QList<QByteArray> environment;
    int output = -1;  // its standard output, or what it inherits as such and as standard error
    int program = -1; // an open file that `file` names as programDescriptor, or none
};

/// A program that was started, in a session of its own. Destroying it neither ends nor awaits it.
class ChildProcess final {
public:
    /// What Command::program is in the child.
    static constexpr int programDescriptor = 3;

    /// Starts it; throws std::system_error. Signals have their default action in it, and all other descriptors are
    /// closed.
    explicit ChildProcess(const Command& command);

    pid_t id() const { return m_id; }

    /// Readable once it has ended (pidfd_open(2)).
    int ending() const { return m_ending.get(); }

    /// Ends it at once, with all that it has started in its session.
    void kill() const;

    /// Waits for its end, and yields its status as of waitpid(2). To be called once, when it has ended or been killed.
    int reap() const;

private:
    pid_t m_id = -1;
    FileDescriptor m_ending{-1};
};

} // namespace torvane
