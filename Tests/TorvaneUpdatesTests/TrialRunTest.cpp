#include "TorvaneUpdates/TrialRun.h"

#include "Support/FileDescriptor.h"
#include "Support/TestFiles.h"
#include "TorvaneUpdates/UpdateFailure.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <thread>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds generous = 120s;

/// What was wrong, or nothing.
QString tried(int program, const QString& version, std::chrono::milliseconds limit = generous,
              const std::stop_token& stop = {}) {
    try {
        tryOut(program, version, limit, stop);
    } catch (const UpdateFailure& failure) {
        return failure.fault() == UpdateFault::doesNotRun ? QString::fromUtf8(failure.what()) : u"another fault"_s;
    }
    return {};
}

} // namespace

class TrialRunTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aProgramThatSaysItsVersionPasses() {
        QCOMPARE(tried(sample("new").get(), u"2.0"_s), QString());
        QCOMPARE(tried(script("#!/bin/sh\necho some name 2.0\n").get(), u"2.0"_s), QString());
    }

    void anotherVersionAlsoALongerOneFails() {
        QVERIFY(tried(sample("new").get(), u"2"_s).contains(u"calls itself"_s));
        QVERIFY(tried(sample("misnamed").get(), u"2.0"_s).contains(u"calls itself"_s));
        QVERIFY(tried(script("#!/bin/sh\n").get(), u"2.0"_s).contains(u"calls itself"_s));
    }

    void aProgramThatCrashesOrFailsOrIsNoneFails() {
        QVERIFY(tried(sample("crashing").get(), u"2.0"_s).contains(u"does not run"_s));
        QVERIFY(tried(sample("failing").get(), u"2.0"_s).contains(u"does not run"_s));
        QVERIFY(tried(script("\177ELF and no more").get(), u"2.0"_s).contains(u"cannot be started"_s));
    }

    void aProgramThatHangsIsEndedAtTheLimit() {
        QVERIFY(tried(sample("hanging").get(), u"2.0"_s, 1s).contains(u"hangs"_s));
    }

    void whatItLeavesRunningIsEndedWithIt() {
        const QString number = m_folder.filePath(u"number"_s);
        const QByteArray text = "#!/bin/sh\nsleep 1000 & echo $! > '" + QFile::encodeName(number) + "'\necho 2.0\n";
        // The output stays open for as long as the other one runs, which is not waited for.
        QVERIFY(tried(script(text).get(), u"2.0"_s, 24h).isEmpty());
        const pid_t left = TestFiles::contentOf(number).trimmed().toInt();
        QVERIFY(left > 0);
        QVERIFY(QTest::qWaitFor([left] { return !isRunning(left); }, 60'000));
    }

    void aProgramWithoutEndOfOutputFails() {
        QVERIFY(tried(script("#!/bin/sh\nexec yes 2.0\n").get(), u"2.0"_s, 30s).contains(u"does not run"_s));
    }

    void aProgramThatClosesItsOutputAndStaysIsEndedAtTheLimit() {
        const QByteArray text = "#!/bin/sh\necho 2.0\nexec >&- 2>&-\nexec sleep 1000\n";
        QVERIFY(tried(script(text).get(), u"2.0"_s, 1s).contains(u"hangs"_s));
    }

    void aStopEndsItAtOnce() {
        std::stop_source stop;
        const FileDescriptor hanging = sample("hanging");
        std::jthread stopper([&stop] { stop.request_stop(); });
        QVERIFY(!tried(hanging.get(), u"2.0"_s, generous, stop.get_token()).isEmpty());
    }

    void itSeesNothingOfOurs() {
        qputenv("TORVANE_SECRET", "yes");
        const QString seen = m_folder.filePath(u"seen"_s);
        const QByteArray path = QFile::encodeName(seen);
        const FileDescriptor open(::open("/dev/null", O_RDWR)); // Not to be closed by itself.
        tried(script("#!/bin/sh\nenv > '" + path + "'\nls -l /proc/self/fd >> '" + path + "'\n").get(), u"2.0"_s);
        const QByteArray text = TestFiles::contentOf(seen);
        QVERIFY(text.contains("LC_ALL=C.UTF-8"));
        QVERIFY(!text.contains("TORVANE_SECRET"));
        // Its streams, the program, and what ls and the shell open themselves.
        QVERIFY2(text.count(" -> ") <= 5, text);
    }

private:
    static bool isRunning(pid_t id) {
        const QString status = QString::fromUtf8(TestFiles::contentOf(u"/proc/%1/stat"_s.arg(id)));
        return !status.startsWith(u"cannot"_s) && !status.contains(u") Z "_s);
    }

    FileDescriptor sample(const char* name) { return script(UpdateRig::sample(name)); }

    /// A program of these bytes, open for reading.
    FileDescriptor script(const QByteArray& bytes) {
        const QString path = m_folder.filePath(u"program"_s);
        QFile::remove(path);
        TestFiles::put(path, bytes);
        ::chmod(QFile::encodeName(path), S_IRWXU);
        return FileDescriptor(::open(QFile::encodeName(path), O_RDONLY | O_CLOEXEC));
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TrialRunTest)
#include "TrialRunTest.moc"
