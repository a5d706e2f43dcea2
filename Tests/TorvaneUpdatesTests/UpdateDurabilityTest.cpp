#include "Support/OwnMounts.h"
#include "Support/TestFiles.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 300'000; // Milliseconds; far beyond what any step takes.
const QStringList programAlone{u"velisk"_s};

/// How often the program is killed somewhere; the long proof asks for more.
int killRounds() {
    return qEnvironmentVariableIsSet("TORVANE_SOAK") ? 200 : 20;
}

} // namespace

/// An update that is killed, or that finds no room, leaves one whole program that runs.
class UpdateDurabilityTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(m_directory->isValid());
    }

    void aProgramKilledAtAnyCallToItsDiskLeavesOneWholeProgram() {
        const int calls = callsOfAWholeUpdate();
        QVERIFY(calls > 30);
        int kills = 0;
        for (int call = 1; call <= calls; ++call) {
            QVERIFY(QDir(bin()).removeRecursively());
            QProcess program;
            start(program, {}, call);
            QVERIFY(program.waitForFinished(patience));
            kills += program.exitStatus() == QProcess::CrashExit;
            requireOneWholeProgram();
            requireNothingOverAfterAStart();
            if (QTest::currentTestFailed())
                qFatal("at call %d", call);
        }
        QCOMPARE(kills, calls);
    }

    void aProgramKilledAtAnyMomentLeavesOneWholeProgram() {
        for (int round = 0; round < killRounds(); ++round) {
            QVERIFY(QDir(bin()).removeRecursively());
            QProcess program;
            start(program, {}, 0);
            const int lines = QRandomGenerator::global()->bounded(1, 40);
            for (int line = 0; line < lines && program.waitForReadyRead(patience);) {
                for (; program.canReadLine(); ++line)
                    program.readLine();
            }
            program.kill();
            QVERIFY(program.waitForFinished(patience));
            requireOneWholeProgram();
            requireNothingOverAfterAStart();
        }
    }

    void aFullDiskKeepsTheProgramAndSaysSo() {
        if (!OwnMounts::areAllowed())
            QSKIP("Nobody may mount here.");
        QVERIFY(QDir().mkpath(bin()));
        QProcess program;
        start(program, OwnMounts::wrapper(OwnMounts::smallDisk(128), bin()), 0);
        QVERIFY(program.waitForFinished(patience));
        const QByteArray said = program.readAll();
        QCOMPARE(program.exitCode(), 1);
        QVERIFY2(said.contains("failed: The file cannot be written: No space left on device."), said);
        QVERIFY2(said.contains("entries: velisk\n"), said);
    }

private:
    QString bin() const { return m_directory->filePath(u"bin"_s); }
    QString velisk() const { return bin() + u"/velisk"_s; }

    void start(QProcess& program, const QStringList& wrapper, int call) const {
        QFile::remove(m_directory->filePath(u"preferences.json"_s));
        const QStringList command = wrapper + QStringList{QStringLiteral(UPDATE_SCRIPT), m_directory->path(),
                                                          QString::fromStdString(std::to_string(call))};
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(command.first(), command.sliced(1));
        QVERIFY2(program.waitForStarted(patience), qUtf8Printable(program.errorString()));
    }

    int callsOfAWholeUpdate() const {
        QProcess program;
        start(program, {}, 0);
        [&] { QVERIFY(program.waitForFinished(patience)); }();
        [&] { QCOMPARE(program.exitCode(), 0); }();
        const QByteArray said = program.readAll();
        return said.sliced(said.lastIndexOf("calls: ") + 7).trimmed().toInt();
    }

    void requireOneWholeProgram() const {
        const QByteArray content = TestFiles::contentOf(velisk());
        const bool isOld = content == UpdateRig::sample("old");
        QVERIFY(isOld || (content.startsWith(UpdateRig::sample("new")) && content.size() > 300'000));
        QProcess velisk;
        velisk.start(this->velisk(), {u"--version"_s});
        QVERIFY(velisk.waitForFinished(patience));
        QCOMPARE(velisk.readAll(), isOld ? QByteArray("velisk 1.0\n") : QByteArray("velisk 2.0\n"));
    }

    void requireNothingOverAfterAStart() const {
        UpdateRig rig(m_directory->path(), QByteArray(32, 's'));
        rig.start();
        rig.waitUntilReady();
        QCOMPARE(TestFiles::entriesOf(bin()), programAlone);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(UpdateDurabilityTest)
#include "UpdateDurabilityTest.moc"
