#pragma once

#include <QStringList>

#include <optional>

namespace torvane {

/// What the program says to its arguments before it ends: nothing is configured by them.
struct CommandLineAnswer {
    QString text; ///< with its last line feed
    int status;   ///< 0, and the text is for standard output; otherwise it is for standard error

    bool operator==(const CommandLineAnswer&) const = default;
};

/// The answer to these arguments, the program's own name left out; none when there are none, and the program is to run.
std::optional<CommandLineAnswer> answerToArguments(const QStringList& arguments);

/// The answer where the environment names no desktop; none where it names one. Qt would end the program by SIGABRT,
/// and advise to install it anew.
std::optional<CommandLineAnswer> answerToNoDesktop();

} // namespace torvane
