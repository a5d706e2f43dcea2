#include "CommandLine.h"

#include "Model/Config.h"

#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

class CommandLineTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutArgumentsTheProgramRuns() { QVERIFY(!answerToArguments({})); }

    void theVersionIsThatOfTheBuild() {
        QCOMPARE(answerToArguments({u"--version"_s}),
                 (CommandLineAnswer{u"velisk "_s + Config::currentVersion() + u'\n', 0}));
    }

    void theHelpNamesBothArguments() {
        const auto answer = answerToArguments({u"--help"_s});
        QCOMPARE(answer->status, 0);
        QVERIFY(answer->text.contains("--help"_L1) && answer->text.contains("--version"_L1));
        QCOMPARE(answerToArguments({u"-h"_s}), answer);
    }

    void anyOtherArgumentIsRefusedInOneLineThatNamesIt_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("a word") << QStringList{u"now"_s};
        QTest::newRow("an option of the toolkit") << QStringList{u"-platform"_s, u"xcb"_s};
        QTest::newRow("a known one too many") << QStringList{u"--version"_s, u"--help"_s};
        QTest::newRow("an empty one") << QStringList{QString()};
    }

    void anyOtherArgumentIsRefusedInOneLineThatNamesIt() {
        QFETCH(QStringList, arguments);
        const auto answer = answerToArguments(arguments);
        QCOMPARE(answer->status, 2);
        QCOMPARE(answer->text.count(u'\n'), 1);
        QVERIFY(answer->text.endsWith(arguments.join(u' ') + u'\n'));
    }

    void whereNoDesktopIsNamedItDoesNotRun() {
        leaveTheDesktop();
        const auto answer = answerToNoDesktop();
        QVERIFY(answer);
        QCOMPARE(answer->status, 1);
        QCOMPARE(answer->text.count(u'\n'), 1);
        qputenv("DISPLAY", "");
        QCOMPARE(answerToNoDesktop(), answer);
    }

    void whereOneIsNamedItRuns_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("X") << QByteArray("DISPLAY") << QByteArray(":0");
        QTest::newRow("Wayland") << QByteArray("WAYLAND_DISPLAY") << QByteArray("wayland-1");
        QTest::newRow("an open connection") << QByteArray("WAYLAND_SOCKET") << QByteArray("3");
        QTest::newRow("a platform of Qt's") << QByteArray("QT_QPA_PLATFORM") << QByteArray("offscreen");
        QTest::newRow("a session on Wayland") << QByteArray("XDG_SESSION_TYPE") << QByteArray("wayland");
    }

    void whereOneIsNamedItRuns() {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, value);
        leaveTheDesktop();
        qputenv(name, value);
        QVERIFY(!answerToNoDesktop());
    }

private:
    static void leaveTheDesktop() {
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "QT_QPA_PLATFORM", "XDG_SESSION_TYPE"})
            qunsetenv(name);
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
