#include "Support/FileDescriptor.h"
#include "Support/TestFiles.h"
#include "Support/Worker.h"
#include "TorvaneKitTests/Support/FailingDisk.h"
#include "TorvaneUpdates/UpdateWorker.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <fcntl.h>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;
using FailingDisk::Fault;

namespace {

const QByteArray seed(32, 's');
const QStringList programAlone{u"velisk"_s};

} // namespace

/// Each call of an update to its disk fails in turn. Whatever call it is, there is one whole program, and the next
/// update on a good disk succeeds and leaves nothing over.
class UpdateFaultsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        const QString memory = u"/dev/shm"_s; // The faults are made here, so a disk in memory will do.
        const QString place = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
        m_directory = std::make_unique<QTemporaryDir>(place + u"/UpdateFaultsTest-XXXXXX"_s);
        QVERIFY(m_directory->isValid());
    }

    void cleanup() { FailingDisk::disarm(); }

    void aFailingCallLeavesOneWholeProgram_data() {
        QTest::addColumn<int>("error");
        QTest::addColumn<bool>("isLasting");
        QTest::newRow("no space, once") << ENOSPC << false;
        QTest::newRow("no space from then on") << ENOSPC << true;
        QTest::newRow("disk error, once") << EIO << false;
        QTest::newRow("disk error from then on") << EIO << true;
        QTest::newRow("not permitted from then on") << EACCES << true;
    }

    void aFailingCallLeavesOneWholeProgram() {
        QFETCH(int, error);
        QFETCH(bool, isLasting);
        int call = 0;
        int calls = 0;
        int failures = 0;
        do {
            ++call;
            QVERIFY(QDir(folder() + u"/bin"_s).removeRecursively());
            calls = updateWith({call, error, isLasting}, failures);
            if (QTest::currentTestFailed())
                qFatal("at call %d", call);
        } while (call <= calls);
        QVERIFY2(calls > 15 && failures > 10, "too few calls were made to fail");
    }

    /// So that a power cut finds a whole program, and the one that was last there.
    void allIsOnTheDiskBeforeItTakesThePlaceAndAfterwards() {
        int failures = 0;
        const int calls = updateWith({}, failures);
        QCOMPARE(failures, 0);
        int lastWrite = 0;
        int rename = 0;
        for (int call = 1; call <= calls; ++call) {
            lastWrite = FailingDisk::functionOf(call) == "write" ? call : lastWrite;
            rename = FailingDisk::functionOf(call) == "rename" ? call : rename;
        }
        QVERIFY(lastWrite > 0 && lastWrite < rename);
        QVERIFY(isSyncedBetween(lastWrite, rename));
        const auto keepsOld = [](int call) { return FailingDisk::functionOf(call) == "unlink"; };
        int goes = rename + 1;
        while (goes <= calls && !keepsOld(goes))
            ++goes;
        QVERIFY(goes <= calls && isSyncedBetween(rename, goes));
    }

    void whoeverComesBetweenTwoCallsHasTheLastWord_data() {
        QTest::addColumn<QByteArray>("function");
        QTest::addColumn<QByteArray>("suffix");
        QTest::addColumn<QByteArray>("stays");
        QTest::newRow("another program before the old one is kept")
            << QByteArray("link") << QByteArray("velisk") << QByteArray("somebody's");
        QTest::newRow("another file for the checked one before it is renamed")
            << QByteArray("rename") << QByteArray(".tmp") << UpdateRig::sample("old");
    }

    void whoeverComesBetweenTwoCallsHasTheLastWord() {
        QFETCH(QByteArray, function);
        QFETCH(QByteArray, suffix);
        QFETCH(QByteArray, stays);
        QVERIFY(QDir(folder() + u"/bin"_s).removeRecursively());
        UpdateRig rig(folder(), seed);
        rig.publishNew();
        rig.start();
        rig.updater->setAutomaticallyChecksForUpdates(false);
        rig.waitUntilReady();
        const FileDescriptor running(::open(QFile::encodeName(rig.program()), O_RDONLY | O_CLOEXEC));
        const auto exchange = [&] {
            for (const QString& name : TestFiles::entriesOf(rig.programFolder())) {
                const QString path = rig.programFolder() + u'/' + name;
                if (name.endsWith(QLatin1StringView(suffix)) && QFile::remove(path))
                    TestFiles::put(path, "somebody's");
            }
        };
        worker().waitForDone(); // What it still writes of the start asks what is armed.
        FailingDisk::arm(QFile::encodeName(rig.programFolder()),
                         {.call = 1, .only = std::string_view(function), .meanwhile = exchange});
        rig.installByHand();
        QVERIFY(FailingDisk::disarm() > 0);
        QCOMPARE(rig.windows.kind(), u"failed"_s);
        QCOMPARE(TestFiles::contentOf(rig.program()), stays);
        rig.updater.reset();
        updateWorker().waitForDone();
        QCOMPARE(TestFiles::entriesOf(rig.programFolder()), programAlone);
    }

private:
    static bool isSyncedBetween(int from, int to) {
        while (++from < to) {
            if (FailingDisk::functionOf(from) == "fsync")
                return true;
        }
        return false;
    }

    QString folder() const { return m_directory->path(); }

    int updateWith(const Fault& fault, int& failures) const {
        int calls = 0;
        {
            UpdateRig rig(folder(), seed);
            rig.publishNew();
            rig.start();
            rig.updater->setAutomaticallyChecksForUpdates(false);
            rig.waitUntilReady();
            worker().waitForDone(); // It writes the preferences, and each of its calls asks whether it is to fail.
            FailingDisk::arm(QFile::encodeName(rig.programFolder()), fault);
            rig.installByHand();
            const bool hasFailed = rig.windows.kind() == u"failed"_s;
            rig.updater.reset();
            worker().waitForDone();
            calls = FailingDisk::disarm();
            failures += hasFailed;
            requireWhole(rig, hasFailed);
        }
        UpdateRig rig(folder(), seed);
        rig.publish({{.version = u"3.0"_s, .payload = UpdateRig::sample("newer")}});
        rig.start();
        rig.waitUntilReady();
        [&] { QCOMPARE(TestFiles::entriesOf(rig.programFolder()), programAlone); }();
        rig.installByHand();
        [&] { QCOMPARE(TestFiles::contentOf(rig.program()), UpdateRig::sample("newer")); }();
        [&] { QCOMPARE(TestFiles::entriesOf(rig.programFolder()), programAlone); }();
        return calls;
    }

    static void requireWhole(const UpdateRig& rig, bool hasFailed) {
        const QByteArray content = TestFiles::contentOf(rig.program());
        QVERIFY(QFileInfo(rig.program()).isExecutable());
        QVERIFY(content == UpdateRig::sample("old") || content == UpdateRig::sample("new"));
        QCOMPARE(rig.replaced, hasFailed ? 0 : 1);
        if (!hasFailed)
            QCOMPARE(content, UpdateRig::sample("new"));
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(UpdateFaultsTest)
#include "UpdateFaultsTest.moc"
