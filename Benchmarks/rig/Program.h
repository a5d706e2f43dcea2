#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

/// Thrown where nothing can be measured.
[[noreturn]] void giveUp(const std::string& why);

/// What a benchmark's main() gives: what the measurement gives, or 2, having said why, when it gave up. All programs
/// that it started have ended.
int outcome(const std::function<int()>& measurement);

/// A program that runs until this goes. What it writes to standard output can be read line by line.
class Program final {
public:
    using Words = std::vector<std::string>;

    /// Starts it, with these environment variables ("NAME=value") and no others. The program is sought on the path.
    Program(const Words& command, const Words& environment);
    ~Program();

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// The next line, without its line feed. Waits for it, but not longer than a minute; none when there will be none.
    std::optional<std::string> line();

    /// Writes a line to its standard input.
    void tell(std::string_view words) const;

    /// All that it writes until it ends.
    std::string rest();

    /// Waits for its end; whether it ended with 0.
    bool succeeds();

    bool isRunning();

    pid_t id() const { return m_id; }

private:
    bool readMore();

    pid_t m_id = -1;
    std::optional<int> m_status; // Once it has ended.
    int m_input = -1;
    int m_output = -1;
    std::string m_unread;
};
