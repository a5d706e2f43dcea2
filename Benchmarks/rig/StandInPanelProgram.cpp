// A panel on the session's bus. It writes a line for each name that is taken on the bus and each item that registers,
// with the time: "name NANOSECONDS NAME", "item NANOSECONDS NAME". To "click" on its standard input it activates the
// item that registered last, and writes "click NANOSECONDS" just before.
#include "rig/Moment.h"
#include "rig/StandInWatcher.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cinttypes>
#include <cstdio>
#include <unistd.h>

namespace {

void report(const char* what, const QString& who) {
    std::printf("%s %" PRId64 " %s\n", what, now(), qUtf8Printable(who));
    std::fflush(stdout);
}

void obey(StandInWatcher& watcher) {
    char order[64];
    if (read(STDIN_FILENO, order, sizeof order) <= 0) {
        QCoreApplication::quit();
        return;
    }
    report("click", {});
    watcher.click();
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    StandInWatcher watcher(QDBusConnection::sessionBus());
    if (!watcher.appear())
        return 1;
    QObject::connect(&watcher, &StandInWatcher::registered, [](const QString& item) { report("item", item); });
    QObject::connect(&watcher, &StandInWatcher::nameTaken, [](const QString& name) { report("name", name); });
    const QSocketNotifier orders(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, [&watcher] { obey(watcher); });
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
