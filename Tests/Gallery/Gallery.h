#pragma once

#include <QApplication>
#include <QDir>

#include <cstdio>

/// What the programs that write pictures have in common.
namespace torvane::Gallery {

/// A gallery's main: `write` is given the folder of the command line and says whether all could be written there. The
/// windows' style is the program's; fonts and scale are the environment's (FONTCONFIG_FILE, QT_SCALE_FACTOR).
inline int run(int argc, char** argv, const char* name, bool (*write)(const QDir& folder)) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setStyle(QStringLiteral("fusion"));
    const QApplication application(argc, argv);
    const QDir folder(argc < 2 ? QString() : QString::fromLocal8Bit(argv[1]));
    if (argc < 2 || !QDir().mkpath(folder.path())) {
        std::fprintf(stderr, "Use: %s FOLDER\n", name);
        return 2;
    }
    const bool ok = write(folder);
    if (!ok)
        std::fprintf(stderr, "%s: a picture could not be written to %s\n", name, qUtf8Printable(folder.path()));
    return ok ? 0 : 1;
}

} // namespace torvane::Gallery
