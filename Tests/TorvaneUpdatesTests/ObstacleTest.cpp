#include "TorvaneUpdates/Obstacle.h"

#include "Support/FileDescriptor.h"
#include "Support/TestFiles.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

namespace {

constexpr uid_t somebodyElse = 65534;

void setMode(const QString& path, mode_t mode) {
    QCOMPARE(::chmod(QFile::encodeName(path), mode), 0);
}

} // namespace

/// Which copies a program must not replace, and what is said of them.
class ObstacleTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<QTemporaryDir>();
        TestFiles::put(program(), "a program");
        setMode(program(), 0755);
    }

    void cleanup() {
        qunsetenv("APPDIR");
        qunsetenv("SNAP");
        setMode(folder(), 0755);
    }

    void aFileOfOurOwnCanBeReplaced() { QCOMPARE(obstacleTo(Executable::at(program())), QString()); }

    void aFileBehindALinkIsMeantAndNotTheLink() {
        const QString link = m_folder->filePath(u"link"_s);
        QVERIFY(QFile::link(program(), link));
        QCOMPARE(Executable::at(link).path, QFileInfo(program()).canonicalFilePath());
        QCOMPARE(obstacleTo(Executable::at(link)), QString());
    }

    void theSystemsProgramsAreNotOurs() {
        const QString obstacle = obstacleTo(Executable::at(u"/usr/bin/env"_s));
        QCOMPARE(obstacle, u"this copy belongs to the system"_s);
        QCOMPARE(obstacleTo(Executable::at(u"/bin/sh"_s)), obstacle);
    }

    void aWriteProtectedFileStays() {
        setMode(program(), 0555);
        QCOMPARE(obstacleTo(Executable::at(program())), u"this copy is write-protected"_s);
    }

    void aWriteProtectedFolderStays() {
        setMode(folder(), 0555);
        QCOMPARE(obstacleTo(Executable::at(program())), u"the folder of this copy cannot be written"_s);
    }

    void aFileOfAnotherUserStays() {
        if (::geteuid() != 0)
            QSKIP("Only root can give a file away.");
        QCOMPARE(::chown(QFile::encodeName(program()), somebodyElse, somebodyElse), 0);
        QCOMPARE(obstacleTo(Executable::at(program())), u"this copy belongs to another user"_s);
    }

    void whatIsPackedWithItsSurroundingsStays_data() {
        QTest::addColumn<QByteArray>("variable");
        QTest::newRow("AppImage") << QByteArray("APPDIR");
        QTest::newRow("snap") << QByteArray("SNAP");
    }

    void whatIsPackedWithItsSurroundingsStays() {
        QFETCH(QByteArray, variable);
        qputenv(variable.constData(), QFile::encodeName(m_folder->path()));
        QCOMPARE(obstacleTo(Executable::at(program())), u"this copy is part of a package"_s);
        // Started from a terminal that is packed so, it is not.
        qputenv(variable.constData(), "/nonexistent");
        QCOMPARE(obstacleTo(Executable::at(program())), QString());
    }

    void aFileThatHasGoneOrBeenReplacedSinceTheStartStays() {
        const QString gone = u"the file of this copy has been moved or replaced since it was started"_s;
        const Executable started = Executable::at(program());
        const FileDescriptor running(::open(QFile::encodeName(program()), O_RDONLY | O_CLOEXEC));
        QVERIFY(QFile::remove(program()));
        QCOMPARE(obstacleTo(started), gone);
        TestFiles::put(program(), "another program");
        QCOMPARE(obstacleTo(started), gone);
        QVERIFY(QFile::remove(program()));
        QVERIFY(QFile::link(u"/bin/sh"_s, program()));
        QCOMPARE(obstacleTo(started), gone);
        QCOMPARE(obstacleTo(Executable::at(m_folder->filePath(u"never there"_s))), gone);
        QCOMPARE(obstacleTo(Executable::at(m_folder->path())), gone);
    }

    void whoeverCannotReplaceItIsToldByItselfOnceAndByHandAlways() {
        UpdateRig rig;
        setMode(rig.program(), 0555);
        rig.publishNew();
        rig.start();
        rig.waitForScene(u"found"_s);
        QCOMPARE(rig.windows.offer().obstacle,
                 u"Version 2.0 exists, but this copy is write-protected: the package manager, or whoever installed it, "
                 u"brings the new one."_s);
        rig.windows.give(Answer::close);
        rig.waitUntilReady();
        UpdateRig::setTime(UpdateRig::noon().addDays(2));
        rig.windows.scenes.clear();
        const int before = rig.download.documents;
        rig.updater->catchUp();
        QVERIFY(QTest::qWaitFor([&] { return rig.download.documents > before; }, 60'000));
        rig.waitUntilReady();
        QCOMPARE(rig.windows.scenes, QStringList());
        rig.updater->checkForUpdates();
        rig.waitForScene(u"found"_s);
        rig.windows.give(Answer::install); // No window has that button; nothing may come of it anyway.
        rig.waitUntilReady();
        QCOMPARE(rig.download.files, 0);
    }

private:
    QString folder() const { return m_folder->filePath(u"bin"_s); }
    QString program() const { return folder() + u"/velisk"_s; }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(ObstacleTest)
#include "ObstacleTest.moc"
