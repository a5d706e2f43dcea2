#include "Badge/PanelIcons.h"

#include "Support/TestFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <unistd.h>

using namespace torvane;
using namespace Qt::StringLiterals;

class PanelIconsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_runtime = std::make_unique<QTemporaryDir>();
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime->path()));
    }

    void aPictureHasAFileOfItsName() {
        PanelIcons files;
        QCOMPARE(files.folder(), m_runtime->filePath(u"velisk/icons"_s));
        const std::optional<QString> name = files.put("one", "-symbolic.svg"_L1);
        QVERIFY(name && name->endsWith("-symbolic"_L1));
        QCOMPARE(TestFiles::contentOf(files.folder() + u'/' + *name + ".svg"_L1), QByteArray("one"));
    }

    void anotherPictureHasAnotherNameAndTheSameOneKeepsIts() {
        PanelIcons files;
        const auto first = files.put("one", ".png"_L1);
        const auto second = files.put("two", ".png"_L1);
        QVERIFY(first && second && first != second);
        QCOMPARE(files.put("one", ".png"_L1), first);
        QCOMPARE(TestFiles::entriesOf(files.folder()).size(), 2);
    }

    void thePictureBeforeStaysAndEarlierOnesGo() {
        PanelIcons files;
        files.put("one", ".png"_L1);
        const auto second = files.put("two", ".png"_L1);
        const auto third = files.put("three", ".png"_L1);
        QStringList expected{*second + ".png"_L1, *third + ".png"_L1};
        expected.sort();
        QCOMPARE(TestFiles::entriesOf(files.folder()), expected);
        QCOMPARE(files.put("three", ".png"_L1), third); // The same again does not age the one before.
        QCOMPARE(TestFiles::entriesOf(files.folder()), expected);
    }

    void whatAKilledProcessLeftGoesAndStrangersStay() {
        PanelIcons files;
        // Of a number that no process has, and as earlier versions named them.
        TestFiles::put(files.folder() + "/velisk-4194305-0123456789abcdef.png"_L1, "old");
        TestFiles::put(files.folder() + "/velisk-4194305-0123456789abcdef.png.part"_L1, "half");
        TestFiles::put(files.folder() + "/velisk-0123456789abcdef.png"_L1, "older");
        TestFiles::put(files.folder() + "/index.theme"_L1, "strange");
        const auto name = files.put("one", ".png"_L1);
        QCOMPARE(TestFiles::entriesOf(files.folder()), (QStringList{u"index.theme"_s, *name + ".png"_L1}));
    }

    void thePicturesOfAnotherProcessThatRunsStay() {
        PanelIcons files;
        const QString other = u"velisk-%1-0123456789abcdef.png"_s.arg(getppid());
        TestFiles::put(files.folder() + u'/' + other, "another's");
        const auto name = files.put("one", ".png"_L1);
        QStringList expected{other, *name + ".png"_L1};
        expected.sort();
        QCOMPARE(TestFiles::entriesOf(files.folder()), expected);
    }

    void withoutAPlaceThereIsNoName_data() {
        QTest::addColumn<QByteArray>("runtime");
        QTest::newRow("no directory") << QByteArray();
        QTest::newRow("a relative one") << QByteArray("run");
        QTest::newRow("one that cannot be made") << QByteArray("/proc/self/nowhere");
    }

    void withoutAPlaceThereIsNoName() {
        QFETCH(QByteArray, runtime);
        qputenv("XDG_RUNTIME_DIR", runtime);
        QVERIFY(!PanelIcons().put("one", ".png"_L1));
    }

    void aFileInTheFoldersPlaceIsLeftAlone() {
        TestFiles::put(m_runtime->filePath(u"velisk"_s), "strange");
        QVERIFY(!PanelIcons().put("one", ".png"_L1));
        QCOMPARE(TestFiles::contentOf(m_runtime->filePath(u"velisk"_s)), QByteArray("strange"));
    }

    void aFolderThatWentIsMadeAgain() {
        PanelIcons files;
        files.put("one", ".png"_L1);
        QVERIFY(QDir(m_runtime->filePath(u"velisk"_s)).removeRecursively());
        const auto name = files.put("one", ".png"_L1);
        QCOMPARE(TestFiles::entriesOf(files.folder()), QStringList{*name + ".png"_L1});
    }

private:
    std::unique_ptr<QTemporaryDir> m_runtime;
};

QTEST_GUILESS_MAIN(PanelIconsTest)
#include "PanelIconsTest.moc"
