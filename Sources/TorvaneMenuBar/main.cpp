#include "Model/Config.h"
#include "Platform/TerminationSignals.h"
#include "TorvaneApp.h"

#include <QApplication>

#include <csignal>

int main(int argc, char** argv) {
    // A connection that its server has closed is reported where it is written to, not by a signal.
    std::signal(SIGPIPE, SIG_IGN);
    // A file that may not grow further is a failed write, which the next one mends.
    std::signal(SIGXFSZ, SIG_IGN);
    QGuiApplication::setApplicationName(QStringLiteral("velisk"));
    QGuiApplication::setApplicationVersion(torvane::Config::currentVersion());
    QGuiApplication::setDesktopFileName(QStringLiteral("org.velisk.Torvane"));
    QGuiApplication::setQuitOnLastWindowClosed(false); // There is no window; the program ends when its user says so.
    QApplication application(argc, argv);

    const torvane::TerminationSignals signals_;
    QObject::connect(&signals_, &torvane::TerminationSignals::received, &application, &QCoreApplication::quit);
    const torvane::TorvaneApp app;
    return QApplication::exec();
}
