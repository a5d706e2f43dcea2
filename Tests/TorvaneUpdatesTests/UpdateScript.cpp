// An update in a program of its own, for tests that kill it or starve it of disk:
//     UpdateScript FOLDER CALL        installs version 2.0 in FOLDER/bin; killed at that call to its disk, 0: at none
// It says a line at each step, and at the end how many calls there were, or why it failed.

#include "Support/TestFiles.h"
#include "TorvaneKitTests/Support/FailingDisk.h"
#include "TorvaneUpdates/UpdateWorker.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QCoreApplication>
#include <QFile>

#include <csignal>
#include <cstdio>
#include <sys/prctl.h>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

namespace {

/// So large that it does not fit on the small disks of the tests.
constexpr qsizetype padding = 300'000;
constexpr qsizetype pieces = 30;

void say(const QByteArray& line) {
    std::puts(line);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    UpdateRig rig(arguments.value(1), QByteArray(32, 's'));
    rig.publish({{.payload = UpdateRig::sample("new") + QByteArray(padding, '\0')}});
    rig.download.pieces = pieces;
    rig.download.afterPiece = [] { say("piece"); };
    rig.windows.onShow = [](const QString& kind) { say(kind.toUtf8()); };
    FailingDisk::arm(QFile::encodeName(rig.programFolder()), {.call = arguments.value(2).toInt(), .kills = true});
    rig.start();
    rig.waitUntilReady();
    rig.installByHand();
    updateWorker().waitForDone();
    const int calls = FailingDisk::disarm();
    if (rig.windows.kind() == u"failed"_s)
        say("failed: " + rig.windows.cause().toUtf8());
    say("entries: " + TestFiles::entriesOf(rig.programFolder()).join(u' ').toUtf8());
    say("calls: " + QByteArray::number(calls));
    return rig.replaced == 1 ? 0 : 1;
}
