// Real nodes for a relay under test: RelayNodes TABLE writes the relay's table with their addresses, says "ready" and
// serves until it is ended.
#include "AnvilWorld.h"

#include <QCoreApplication>
#include <QFile>

#include <csignal>
#include <cstdio>

using namespace torvane;

namespace {

QByteArray line(const QStringList& endpoints) {
    return "endpoints = [\"" + endpoints.join(QStringLiteral("\", \"")).toUtf8() + "\"]";
}

/// The built-in table with other endpoints: Ethereum's come first, then the networks', in their order.
QByteArray tableText(const RelayTable& table) {
    QList<QByteArray> lines = RelayTable::builtIn().split('\n');
    qsizetype place = -1;
    for (QByteArray& text : lines) {
        if (text.startsWith("endpoints = ")) {
            text = line(place < 0 ? table.ethereum.endpoints : table.networks[place].endpoints);
            ++place;
        }
        if (text.startsWith("per_second_per_host"))
            text = "per_second_per_host = 1000";
    }
    return lines.join('\n');
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::signal(SIGPIPE, SIG_IGN);
    const AnvilWorld world;
    QFile table(QCoreApplication::arguments().value(1));
    if (!table.open(QIODevice::WriteOnly) || table.write(tableText(world.table())) < 0) {
        std::fputs("The table cannot be written.\n", stderr);
        return 1;
    }
    table.close();
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
