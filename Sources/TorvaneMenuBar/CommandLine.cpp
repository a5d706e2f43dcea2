#include "CommandLine.h"

#include "Model/Config.h"

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// As shells and most programs have it for a command line that makes no sense.
constexpr int wrongUse = 2;
constexpr int cannotRun = 1;

QString help() {
    return u"Use: velisk\n"
           u"\n"
           u"Shows in the panel what a transaction costs now on Ethereum and on its Layer 2 networks. Started once\n"
           u"more while it runs, it opens its window. All settings are in Preferences.\n"
           u"\n"
           u"  --help     show this text\n"
           u"  --version  show the version\n"_s;
}

} // namespace

std::optional<CommandLineAnswer> answerToArguments(const QStringList& arguments) {
    if (arguments.isEmpty())
        return std::nullopt;
    if (arguments.size() == 1 && arguments.first() == "--version"_L1)
        return CommandLineAnswer{u"velisk "_s + Config::currentVersion() + u'\n', 0};
    if (arguments.size() == 1 && (arguments.first() == "--help"_L1 || arguments.first() == "-h"_L1))
        return CommandLineAnswer{help(), 0};
    return CommandLineAnswer{
        u"velisk takes no arguments but --help and --version, so not: "_s + arguments.join(u' ') + u'\n', wrongUse};
}

std::optional<CommandLineAnswer> answerToNoDesktop() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "QT_QPA_PLATFORM"}) {
        if (!qEnvironmentVariableIsEmpty(name))
            return std::nullopt;
    }
    // Wayland's library has a default for the display's name.
    if (qgetenv("XDG_SESSION_TYPE") == "wayland")
        return std::nullopt;
    return CommandLineAnswer{u"velisk needs a desktop: neither DISPLAY nor WAYLAND_DISPLAY is set here.\n"_s,
                             cannotRun};
}

} // namespace torvane
