#include "SelfCheckingValue.h"
#include "Support/OwnMounts.h"
#include "Support/TestFiles.h"
#include "Support/UserDefaults.h"
#include "Support/Worker.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace torvane;

namespace {

constexpr int patience = 300'000; ///< milliseconds; far beyond what any step takes
const QString stormKey = QStringLiteral("storm");
const QString cached = QStringLiteral("cachedSnapshot");

/// How often the program is killed; the long proof asks for more.
int killRounds() {
    bool isSet = false;
    const int rounds = qEnvironmentVariableIntValue("TORVANE_KILL_ROUNDS", &isSet);
    return isSet ? rounds : 20;
}

/// The number at the end of a line such as "set 12".
int numberIn(const QByteArray& line) {
    return line.sliced(line.lastIndexOf(' ') + 1).trimmed().toInt();
}

/// What a killed program has said.
struct Progress {
    int set = 0;
    int durable = 0;
    int lines = 0;

    void read(QProcess& program) {
        while (program.canReadLine()) {
            const QByteArray line = program.readLine();
            (line.startsWith("durable") ? durable : set) = numberIn(line);
            ++lines;
        }
    }
};

const QString smallDisk = OwnMounts::smallDisk(96);

} // namespace

class DurabilityTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(m_directory->isValid());
    }

    void aKilledProgramLeavesWholeFilesWithValuesThatItWrote() {
        int written = 0;
        for (int round = 0; round < killRounds(); ++round) {
            const Progress progress = killInAStorm(written + 1);
            written = progress.set;
            const UserDefaults reopened(preferences(), data());
            const QByteArray text = reopened.string(stormKey).value_or(QString()).toLatin1();
            for (const QByteArray& value : {text, reopened.data(cached).value_or(QByteArray())}) {
                const std::optional<int> number = SelfCheckingValue::numberOf(value);
                QVERIFY2(number, value.left(80));
                QVERIFY(*number >= progress.durable && *number <= progress.set);
            }
            // What one kill leaves over does not outlive the next round.
            QVERIFY(TestFiles::entriesOf(config()).size() + TestFiles::entriesOf(data()).size() <= 3);
        }
        run({QStringLiteral("set:after:all"), QStringLiteral("data:7")});
        QCOMPARE(TestFiles::entriesOf(config()), QStringList{QStringLiteral("preferences.json")});
        QCOMPARE(TestFiles::entriesOf(data()), QStringList{cached});
    }

    void whatIsUnderWayIsAwaitedWhenTheProgramEnds() {
        run({QStringLiteral("set:theme:Dark"), QStringLiteral("data:540")});
        const UserDefaults reopened(preferences(), data());
        QCOMPARE(reopened.string(QStringLiteral("theme")), QStringLiteral("Dark"));
        QCOMPARE(reopened.data(cached), SelfCheckingValue::make(540));
    }

    void twoProgramsStartedTogetherKeepEachOthersValues() {
        QProcess one;
        QProcess two;
        start(one, {}, {QStringLiteral("count:one:40"), QStringLiteral("data:40")});
        start(two, {}, {QStringLiteral("count:two:40"), QStringLiteral("data:41")});
        finish(one);
        finish(two);
        const UserDefaults reopened(preferences(), data());
        QCOMPARE(reopened.string(QStringLiteral("one")), QStringLiteral("40"));
        QCOMPARE(reopened.string(QStringLiteral("two")), QStringLiteral("40"));
        const std::optional<int> number = SelfCheckingValue::numberOf(reopened.data(cached).value_or(QByteArray()));
        QVERIFY(number == 40 || number == 41);
        QCOMPARE(TestFiles::entriesOf(config()), QStringList{QStringLiteral("preferences.json")});
        QCOMPARE(TestFiles::entriesOf(data()), QStringList{cached});
    }

    void aFullDiskKeepsTheOldFilesAndLosesNoValue_data() {
        QTest::addColumn<QStringList>("wrapper");
        QTest::addColumn<QString>("fill");
        QTest::addColumn<QString>("empty");
        const QString filler = QStringLiteral("filler");
        QTest::newRow("a limit on the size of files")
            << QStringList() << QStringLiteral("limitFileSize:30") << QStringLiteral("limitFileSize:-1");
        if (OwnMounts::areAllowed()) {
            QTest::newRow("a small disk")
                << OwnMounts::wrapper(smallDisk, QStringLiteral("HOME")) << QStringLiteral("fillDisk:HOME/") + filler
                << QStringLiteral("remove:HOME/") + filler;
        }
    }

    void aFullDiskKeepsTheOldFilesAndLosesNoValue() {
        QFETCH(QStringList, wrapper);
        QFETCH(QString, fill);
        QFETCH(QString, empty);
        run(wrapper, {
                         QStringLiteral("set:theme:Light"),
                         QStringLiteral("data:200"),
                         QStringLiteral("flush"), //
                         fill,
                         QStringLiteral("set:theme:Darker than night"),
                         QStringLiteral("data:210"),
                         QStringLiteral("flush"),
                         QStringLiteral("expect:theme:Darker than night"),
                         QStringLiteral("expectData:210"),
                         QStringLiteral("expectOnDisk:theme:Light"),
                         QStringLiteral("expectDataOnDisk:200"),
                         QStringLiteral("expectEntries:HOME/data:cachedSnapshot"),
                         empty,
                         QStringLiteral("set:sound:on"),
                         QStringLiteral("flush"), //
                         QStringLiteral("expectOnDisk:theme:Darker than night"),
                         QStringLiteral("expectOnDisk:sound:on"),
                         QStringLiteral("expectDataOnDisk:210"),
                         QStringLiteral("expectEntries:HOME/config:preferences.json"),
                         QStringLiteral("expectEntries:HOME/data:cachedSnapshot"),
                     });
    }

    void aReadOnlyPlaceIsReadAndValuesStayInMemory_data() {
        QTest::addColumn<QStringList>("wrapper");
        QTest::newRow("directories without the right to write") << QStringList();
        if (OwnMounts::areAllowed()) {
            QTest::newRow("a read-only disk")
                << OwnMounts::wrapper(QStringLiteral("mount --bind \"$0\" \"$0\" && mount -o remount,bind,ro \"$0\""),
                                      QStringLiteral("HOME"));
        }
    }

    void aReadOnlyPlaceIsReadAndValuesStayInMemory() {
        QFETCH(QStringList, wrapper);
        TestFiles::put(preferences(), R"({"theme": "Light"})");
        TestFiles::put(data() + QLatin1Char('/') + cached, SelfCheckingValue::make(200));
        setModes(0555);
        const QStringList drop = wrapper.isEmpty() ? QStringList{QStringLiteral("dropRights")} : QStringList();
        run(wrapper,
            drop + QStringList{QStringLiteral("expect:theme:Light"), QStringLiteral("expectData:200"),
                               QStringLiteral("set:theme:Dark"), QStringLiteral("data:210"), QStringLiteral("flush"),
                               QStringLiteral("expect:theme:Dark"), QStringLiteral("expectData:210"),
                               QStringLiteral("expectOnDisk:theme:Light"), QStringLiteral("expectDataOnDisk:200")});
        setModes(0755);
        QCOMPARE(TestFiles::entriesOf(config()), QStringList{QStringLiteral("preferences.json")});
        QCOMPARE(TestFiles::entriesOf(data()), QStringList{cached});
    }

private:
    QString home() const { return m_directory->filePath(QStringLiteral("home")); }
    QString config() const { return home() + QStringLiteral("/config"); }
    QString preferences() const { return config() + QStringLiteral("/preferences.json"); }
    QString data() const { return home() + QStringLiteral("/data"); }

    void setModes(mode_t mode) const {
        QCOMPARE(::chmod(QFile::encodeName(m_directory->path()), 0755), 0);
        for (const QString& directory : {home(), config(), data()})
            QCOMPARE(::chmod(QFile::encodeName(directory), mode), 0);
    }

    /// Starts the script; "HOME" in its steps and its wrapper is the home directory of this test.
    void start(QProcess& program, const QStringList& wrapper, const QStringList& steps) const {
        QStringList command = wrapper + QStringList{QStringLiteral(DEFAULTS_SCRIPT), preferences(), data()} + steps;
        command.replaceInStrings(QStringLiteral("HOME"), home());
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(command.first(), command.sliced(1));
        QVERIFY2(program.waitForStarted(patience), qUtf8Printable(program.errorString()));
    }

    void finish(QProcess& program) const {
        QVERIFY(program.waitForFinished(patience));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
    }

    void run(const QStringList& wrapper, const QStringList& steps) const {
        QVERIFY(QDir().mkpath(home()));
        QProcess program;
        start(program, wrapper, steps);
        finish(program);
    }

    void run(const QStringList& steps) const { run({}, steps); }

    /// Kills a program that writes values from this number on, somewhere between two of the lines that it says.
    Progress killInAStorm(int firstNumber) const {
        QProcess program;
        const QString first = QString::fromStdString(std::to_string(firstNumber));
        start(program, {}, {QStringLiteral("storm:") + first});
        const int lines = QRandomGenerator::global()->bounded(5, 60);
        Progress progress;
        while ((progress.lines < lines || progress.durable == 0) && program.waitForReadyRead(patience))
            progress.read(program);
        program.kill();
        program.waitForFinished(patience);
        progress.read(program);
        return progress;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(DurabilityTest)
#include "DurabilityTest.moc"
