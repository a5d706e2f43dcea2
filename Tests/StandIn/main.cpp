#include "Support/StandInRelay.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTcpServer>

#include <csignal>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    std::signal(SIGPIPE, SIG_IGN);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("A relay with a simulated market, for the demo and for tests."));
    parser.addHelpOption();
    parser.process(application);

    // The demo's Config names this port.
    if (QTcpServer probe; !probe.listen(QHostAddress::LocalHost, TORVANE_DEMO_PORT)) {
        std::fprintf(stderr, "Port %d of this machine is taken.\n", TORVANE_DEMO_PORT);
        return 1;
    }
    const torvane::StandInRelay relay(TORVANE_DEMO_PORT);
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
