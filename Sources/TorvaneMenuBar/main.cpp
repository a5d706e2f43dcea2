#include "CommandLine.h"
#include "Launch.h"
#include "LaunchEnvironment.h"
#include "Model/ApplicationId.h"
#include "Model/Config.h"
#include "Platform/TerminationSignals.h"
#include "Support/FreedMemory.h"

#include <QApplication>
#include <QSessionManager>

#include <csignal>
#include <cstdio>
#include <optional>
#include <utility>

namespace {

/// The entry for the launch at login starts the program; a session that brings it back would start it twice.
void doNotBringBack(QSessionManager& session) {
    session.setRestartHint(QSessionManager::RestartNever);
}

int print(const torvane::CommandLineAnswer& answer) {
    std::fputs(qUtf8Printable(answer.text), answer.status == 0 ? stdout : stderr);
    return answer.status;
}

} // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    if (const auto answer = torvane::answerToArguments(arguments))
        return print(*answer);
    if (const auto answer = torvane::answerToNoDesktop())
        return print(*answer);

    torvane::shareMemoryAmongThreads();
    torvane::keepLargeBlocksApart();
    // A connection that its server has closed is reported where it is written to, not by a signal.
    std::signal(SIGPIPE, SIG_IGN);
    // A file that may not grow further is a failed write, which the next one mends.
    std::signal(SIGXFSZ, SIG_IGN);
    std::optional<torvane::X11Preference> platform(std::in_place);
    QApplication::setApplicationName(QStringLiteral("velisk"));
    QApplication::setApplicationVersion(torvane::Config::currentVersion());
    QApplication::setDesktopFileName(torvane::applicationId);
    QApplication::setQuitOnLastWindowClosed(false); // The program ends when its user says so.
    // The same on every desktop. Named this early, the desktop's own is not even loaded.
    QApplication::setStyle(QStringLiteral("fusion"));
    QApplication application(argc, argv);
    platform.reset();
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &application, doNotBringBack);
    QObject::connect(&application, &QGuiApplication::saveStateRequest, &application, doNotBringBack);

    const torvane::TerminationSignals signals_;
    QObject::connect(&signals_, &torvane::TerminationSignals::received, &application, &QCoreApplication::quit);
    const torvane::Launch launch(QStringLiteral(TORVANE_APPLICATION_ID));
    return QApplication::exec();
}
