#include "rig/Program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr int longestWaitMs = 60000;

std::vector<char*> pointers(const Program::Words& words) {
    std::vector<char*> all;
    for (const std::string& word : words)
        all.push_back(const_cast<char*>(word.c_str())); // posix_spawn() leaves them as they are.
    all.push_back(nullptr);
    return all;
}

std::array<int, 2> newPipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        giveUp("There are no more pipes");
    return ends;
}

} // namespace

void giveUp(const std::string& why) {
    throw std::runtime_error(why);
}

int outcome(const std::function<int()>& measurement) {
    try {
        return measurement();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}

Program::Program(const Words& command, const Words& environment) {
    const auto [inputEnd, input] = newPipe();
    const auto [output, outputEnd] = newPipe();
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, inputEnd, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, outputEnd, STDOUT_FILENO);
    const int error = posix_spawnp(&m_id, command.front().c_str(), &files, nullptr, pointers(command).data(),
                                   pointers(environment).data());
    posix_spawn_file_actions_destroy(&files);
    close(inputEnd);
    close(outputEnd);
    m_input = input;
    m_output = output;
    if (error != 0)
        giveUp(command.front() + " does not start: " + std::strerror(error));
}

Program::~Program() {
    if (isRunning()) {
        kill(m_id, SIGKILL);
        waitpid(m_id, nullptr, 0);
    }
    close(m_input);
    close(m_output);
}

bool Program::isRunning() {
    int status = 0;
    if (!m_status && waitpid(m_id, &status, WNOHANG) == m_id)
        m_status = status;
    return !m_status;
}

bool Program::succeeds() {
    int status = 0;
    if (!m_status && waitpid(m_id, &status, 0) == m_id)
        m_status = status;
    return m_status == 0;
}

bool Program::readMore() {
    pollfd ready{m_output, POLLIN, 0};
    if (poll(&ready, 1, longestWaitMs) <= 0)
        return false;
    std::array<char, 4096> bytes{};
    const ssize_t count = read(m_output, bytes.data(), bytes.size());
    if (count > 0)
        m_unread.append(bytes.data(), static_cast<size_t>(count));
    return count > 0;
}

std::optional<std::string> Program::line() {
    size_t end = 0;
    while ((end = m_unread.find('\n')) == std::string::npos) {
        if (!readMore())
            return std::nullopt;
    }
    const std::string found = m_unread.substr(0, end);
    m_unread.erase(0, end + 1);
    return found;
}

std::string Program::rest() {
    while (readMore()) {
    }
    return std::exchange(m_unread, {});
}

void Program::tell(std::string_view words) const {
    const std::string whole = std::string(words) + '\n';
    if (write(m_input, whole.data(), whole.size()) != static_cast<ssize_t>(whole.size()))
        giveUp("A program does not listen any more");
}
