#include "Platform/TerminationSignals.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace torvane {

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT};

// A signal handler may only write to a pipe; the loop reads its other end.
std::array<int, 2> g_pipe{-1, -1};

void forward(int) {
    const int before = errno; // That of whatever was interrupted.
    const char byte = 1;
    // A full pipe already wakes the loop, and a handler can do nothing about any other failure.
    [[maybe_unused]] const ssize_t written = write(g_pipe[1], &byte, 1);
    errno = before;
}

void handleWith(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : handledSignals)
        sigaction(signal, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent) {
    if (pipe2(g_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // Without descriptors left the default action stays: the signals still end the program.
    auto* notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (read(g_pipe[0], &byte, 1) == 1)
            Q_EMIT received();
    });
    handleWith(&forward);
}

TerminationSignals::~TerminationSignals() {
    handleWith(SIG_DFL);
    for (int& end : g_pipe) {
        if (end >= 0)
            close(end);
        end = -1;
    }
}

} // namespace torvane
