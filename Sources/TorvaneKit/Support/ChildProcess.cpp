#include "Support/ChildProcess.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <iterator>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <vector>

namespace torvane {

namespace {

/// Above those that the child's own are made of, so that none of them is overwritten before it is used.
constexpr int outOfTheWay = 16;

void check(int error) {
    if (error != 0)
        throw std::system_error(error, std::generic_category());
}

/// A copy that is out of the way; none of none.
FileDescriptor copyOf(int descriptor) {
    if (descriptor < 0)
        return FileDescriptor(-1);
    FileDescriptor copy(::fcntl(descriptor, F_DUPFD_CLOEXEC, outOfTheWay));
    check(copy.isOpen() ? 0 : errno);
    return copy;
}

/// The C library's own function cannot be called from C++ before glibc 2.37.
FileDescriptor openProcess(pid_t id) {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
}

class Actions final {
public:
    Actions() { check(::posix_spawn_file_actions_init(&m_actions)); }
    ~Actions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;

    void arrange(int output, int program) {
        check(::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
        if (output >= 0) {
            check(::posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO));
            check(::posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0));
        }
        if (program >= 0)
            check(::posix_spawn_file_actions_adddup2(&m_actions, program, ChildProcess::programDescriptor));
        const int firstClosed = ChildProcess::programDescriptor + (program >= 0 ? 1 : 0);
        check(::posix_spawn_file_actions_addclosefrom_np(&m_actions, firstClosed));
    }

    const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

class Attributes final {
public:
    Attributes() {
        check(::posix_spawnattr_init(&m_attributes));
        check(::posix_spawnattr_setflags(&m_attributes,
                                         POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK));
        sigset_t set{};
        ::sigemptyset(&set);
        check(::posix_spawnattr_setsigmask(&m_attributes, &set));
        ::sigfillset(&set);
        check(::posix_spawnattr_setsigdefault(&m_attributes, &set));
    }
    ~Attributes() { ::posix_spawnattr_destroy(&m_attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const posix_spawnattr_t* get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes{};
};

/// As the system's calls take lists of texts, which they do not change.
std::vector<char*> pointersTo(const QList<QByteArray>& texts) {
    std::vector<char*> pointers;
    std::ranges::transform(texts, std::back_inserter(pointers),
                           [](const QByteArray& text) { return const_cast<char*>(text.constData()); });
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

ChildProcess::ChildProcess(const Command& command) {
    const FileDescriptor output = copyOf(command.output);
    const FileDescriptor program = copyOf(command.program);
    Actions actions;
    actions.arrange(output.get(), program.get());
    const Attributes attributes;
    const std::vector<char*> arguments = pointersTo(command.arguments);
    const std::vector<char*> environment = pointersTo(command.environment);
    check(::posix_spawn(&m_id, command.file, actions.get(), attributes.get(), arguments.data(), environment.data()));
    m_ending = openProcess(m_id);
    if (m_ending.isOpen())
        return;
    const int error = errno;
    kill();
    reap();
    check(error);
}

void ChildProcess::kill() const {
    ::kill(-m_id, SIGKILL); // Its process group, which has its number since before the program began.
}

int ChildProcess::reap() const {
    int status = 0;
    uninterrupted([&] { return ::waitpid(m_id, &status, 0); });
    return status;
}

} // namespace torvane
