#include "Support/OwnMounts.h"

#include <QProcess>
#include <QTemporaryDir>

#include <unistd.h>

namespace torvane::OwnMounts {

namespace {

constexpr int patience = 300'000; // Milliseconds; far beyond what it takes.

} // namespace

QStringList wrapper(const QString& shell, const QString& directory) {
    QStringList command{QStringLiteral("unshare"), QStringLiteral("--mount")};
    if (::geteuid() != 0)
        command.append(QStringLiteral("--map-root-user"));
    return command + QStringList{QStringLiteral("sh"), QStringLiteral("-c"), shell + QStringLiteral(" && exec \"$@\""),
                                 directory};
}

QString smallDisk(int size) {
    return QStringLiteral("mount -t tmpfs -o size=%1k,mode=0700 none \"$0\"").arg(size);
}

bool areAllowed() {
    const QTemporaryDir probe;
    const QStringList command = wrapper(smallDisk(96), probe.path()) + QStringList{QStringLiteral("true")};
    QProcess program;
    program.start(command.first(), command.sliced(1));
    const bool isMounted =
        program.waitForFinished(patience) && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0;
    if (!isMounted)
        qInfo("Nobody may mount here, so the rows with disks of their own are left out.");
    return isMounted;
}

} // namespace torvane::OwnMounts
