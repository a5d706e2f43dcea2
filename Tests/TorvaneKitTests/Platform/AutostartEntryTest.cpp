#include "Platform/AutostartEntry.h"

#include "Support/TestFiles.h"
#include "Support/Worker.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>

using namespace torvane;
using namespace Qt::StringLiterals;
using TestFiles::contentOf;
using TestFiles::put;

namespace {

constexpr int limitMs = 60'000;
const QString exampleId = u"org.example.Program"_s;

AutostartProgram programAt(const QString& path) {
    return {exampleId, u"Example"_s, path};
}

/// The values that the entry of a program at this path has for a key.
QByteArrayList valuesOf(const QByteArray& key, const QString& path) {
    QByteArrayList values;
    for (const QByteArray& line : AutostartEntry::text(programAt(path)).split('\n')) {
        if (line.startsWith(key + '='))
            values.append(line.sliced(key.size() + 1));
    }
    return values;
}

} // namespace

class AutostartEntryTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_home;

    QString below(const QString& name) const { return m_home->filePath(name); }

    QString entryPath() const { return below(u"config/autostart/org.example.Program.desktop"_s); }

    /// What a client of the autostart folder prints, run with nothing but that folder to read.
    QString outputOf(const QString& client, const QStringList& arguments) const {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_CONFIG_DIRS"_s, u"/nonexistent"_s);
        environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"XFCE"_s);
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(client, arguments);
        if (!process.waitForFinished(limitMs) || process.exitStatus() != QProcess::NormalExit)
            qFatal("%s does not run: %s", qPrintable(client), qPrintable(process.errorString()));
        return QString::fromUtf8(process.readAll());
    }

    QString outputOfDex() const { return outputOf(u"dex"_s, {u"-a"_s, u"-v"_s, u"-e"_s, u"XFCE"_s}); }

    /// The names of the units that systemd makes of the folder's entries.
    QStringList unitsOfSystemd() const {
        QStringList folders;
        for (const QString& name : {u"normal"_s, u"early"_s, u"late"_s}) {
            folders.append(below(name));
            QDir().mkpath(below(name));
        }
        outputOf(u"/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator"_s, folders);
        return TestFiles::entriesOf(below(u"late"_s));
    }

    /// A program that leaves a file behind when it is run.
    QString markingProgram(const QString& path) const {
        put(path, "#!/bin/sh\n: >\"" + QFile::encodeName(below(u"was run"_s)) + "\"\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    bool wasRun() const { return QFile::exists(below(u"was run"_s)); }

private Q_SLOTS:
    void init() {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(m_home->isValid());
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(below(u"config"_s)));
        qunsetenv("APPIMAGE");
        qunsetenv("APPDIR");
    }

    void cleanup() { worker().waitForDone(); }

    void theEntrySaysWhatToStart() {
        QCOMPARE(AutostartEntry::text(programAt(u"/usr/bin/example"_s)),
                 QByteArray("[Desktop Entry]\nType=Application\nName=Example\nIcon=org.example.Program\n"
                            "Exec=\"/usr/bin/example\"\nTryExec=/usr/bin/example\nTerminal=false\n"
                            "X-GNOME-Autostart-enabled=true\n"));
    }

    void pathsAreQuotedByTheRules_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("exec");
        QTest::newRow("blank") << u"/opt/my program/run"_s << QByteArray("\"/opt/my program/run\"");
        QTest::newRow("beyond ASCII") << u"/opt/Größe/run"_s << QByteArray("\"/opt/Größe/run\"");
        QTest::newRow("quotation mark") << u"/o\"pt"_s << QByteArray("\"/o\\\\\"pt\"");
        QTest::newRow("dollar") << u"/o$pt"_s << QByteArray("\"/o\\\\$pt\"");
        QTest::newRow("backtick") << u"/o`pt"_s << QByteArray("\"/o\\\\`pt\"");
        QTest::newRow("backslash") << u"/o\\pt"_s << QByteArray("\"/o\\\\\\\\pt\"");
        QTest::newRow("percent") << u"/o%fpt"_s << QByteArray("\"/o%%fpt\"");
        QTest::newRow("end of line") << u"/o\nHidden=true"_s << QByteArray("\"/o\\nHidden=true\"");
        QTest::newRow("tab") << u"/o\tp\rt"_s << QByteArray("\"/o\\tp\\rt\"");
        QTest::newRow("shell's own") << u"/o'p;t&(*)~#"_s << QByteArray("\"/o'p;t&(*)~#\"");
    }

    void pathsAreQuotedByTheRules() {
        QFETCH(const QString, path);
        QFETCH(const QByteArray, exec);
        QCOMPARE(valuesOf("Exec", path), QByteArrayList{exec});
    }

    void onlyAPlainPathIsTriedBeforehand() {
        QCOMPARE(valuesOf("TryExec", u"/opt/Größe-1.0/run"_s), QByteArrayList{"/opt/Größe-1.0/run"});
        for (const QString& path : {u"/a b"_s, u"/a\"b"_s, u"/a%b"_s, u"/a\\b"_s, u"/a\nb"_s, u"/a\n"_s})
            QCOMPARE(valuesOf("TryExec", path), QByteArrayList());
    }

    void theFolderIsBelowTheUsersConfiguration() {
        QCOMPARE(AutostartEntry::location(exampleId), entryPath());
        qputenv("XDG_CONFIG_HOME", "relative");
        qputenv("HOME", "/home/someone");
        QCOMPARE(AutostartEntry::location(exampleId), u"/home/someone/.config/autostart/org.example.Program.desktop"_s);
    }

    void theLastOfQuickChangesHolds() {
        const AutostartProgram program = programAt(u"/usr/bin/example"_s);
        for (int round = 0; round < 20; ++round) {
            AutostartEntry::write(program);
            AutostartEntry::remove(exampleId);
            AutostartEntry::write(program);
        }
        worker().waitForDone();
        QCOMPARE(contentOf(entryPath()), AutostartEntry::text(program));
        AutostartEntry::write(program);
        AutostartEntry::remove(exampleId);
        worker().waitForDone();
        QCOMPARE(TestFiles::entriesOf(below(u"config/autostart"_s)), QStringList());
    }

    void anEntryOfAnOlderPlaceIsReplaced() {
        put(entryPath(), "[Desktop Entry]\nExec=/old\nHidden=true\n");
        const AutostartProgram program = programAt(u"/new/place"_s);
        AutostartEntry::write(program);
        worker().waitForDone();
        QCOMPARE(contentOf(entryPath()), AutostartEntry::text(program));
    }

    void whatCannotBeDoneIsSilent() {
        put(below(u"config"_s), "a file where the folder should be");
        AutostartEntry::write(programAt(u"/usr/bin/example"_s));
        AutostartEntry::remove(exampleId);
        worker().waitForDone();
        QCOMPARE(contentOf(below(u"config"_s)), QByteArray("a file where the folder should be"));
    }

    void aFolderInTheEntrysPlaceStays() {
        QVERIFY(QDir().mkpath(entryPath()));
        AutostartEntry::write(programAt(u"/usr/bin/example"_s));
        AutostartEntry::remove(exampleId);
        worker().waitForDone();
        QVERIFY(QFileInfo(entryPath()).isDir());
    }

    void dexRunsTheProgram_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"program"_s;
        QTest::newRow("blanks") << u"my own folder/my program"_s;
        QTest::newRow("beyond ASCII") << u"Größe 文件/program"_s;
        QTest::newRow("shell's own") << u"o'p;t&(a*b?)~#=|<c>!{d}[e]^@,:+-/program"_s;
    }

    void dexRunsTheProgram() {
        QFETCH(const QString, name);
        AutostartEntry::write(programAt(markingProgram(below(name))));
        worker().waitForDone();
        const QString output = outputOfDex();
        QVERIFY2(QTest::qWaitFor([this] { return wasRun(); }, limitMs), qPrintable(output));
    }

    void dexKnowsNothingOfAnEntryThatWasSwitchedOff() {
        AutostartEntry::write(programAt(markingProgram(below(u"my program"_s))));
        worker().waitForDone();
        QVERIFY2(outputOfDex().contains(exampleId), qPrintable(outputOfDex()));
        AutostartEntry::remove(exampleId);
        worker().waitForDone();
        const QString output = outputOfDex();
        QVERIFY2(!output.contains(exampleId), qPrintable(output));
    }

    void systemdMakesAUnitThatRunsTheProgram() {
        const QString path = markingProgram(below(u"my own folder/my program"_s));
        AutostartEntry::write(programAt(path));
        worker().waitForDone();
        const QString unit = u"app-org.example.Program@autostart.service"_s;
        const QStringList units = unitsOfSystemd();
        QVERIFY2(units.contains(unit), qPrintable(units.join(u' ')));
        const QByteArray text = contentOf(below(u"late/"_s + unit));
        QVERIFY2(text.contains("\nExecStart=:\"" + QFile::encodeName(path) + "\"\n"), text);
    }

    void systemdMakesNoUnitOnceItIsSwitchedOff() {
        AutostartEntry::write(programAt(markingProgram(below(u"my program"_s))));
        AutostartEntry::remove(exampleId);
        worker().waitForDone();
        QCOMPARE(unitsOfSystemd(), QStringList());
    }

    void aProgramStartsItselfFromItsOwnPath() {
        QCOMPARE(launchPath(), QCoreApplication::applicationFilePath());
        qputenv("APPIMAGE", "/home/someone/Another.AppImage");
        QCOMPARE(launchPath(), QCoreApplication::applicationFilePath());
        qputenv("APPDIR", "/tmp/.mount_Another");
        QCOMPARE(launchPath(), QCoreApplication::applicationFilePath());
    }

    void whatRunsFromAnImageStartsTheImage() {
        qputenv("APPIMAGE", "/home/someone/Own.AppImage");
        qputenv("APPDIR", QFile::encodeName(QCoreApplication::applicationDirPath()));
        QCOMPARE(launchPath(), u"/home/someone/Own.AppImage"_s);
    }
};

QTEST_GUILESS_MAIN(AutostartEntryTest)
#include "AutostartEntryTest.moc"
