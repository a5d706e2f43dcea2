#include "Support/SafeFile.h"

#include "Support/TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

using namespace torvane;
using SafeFile::State;
using TestFiles::contentOf;
using TestFiles::put;

namespace {

constexpr qint64 limit = 1000;

mode_t modeOf(const QString& path) {
    struct stat status {};
    return ::stat(QFile::encodeName(path), &status) == 0 ? status.st_mode & 07777 : 0;
}

void bindSocket(const QByteArray& path) {
    const FileDescriptor server(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    QVERIFY(path.size() < qsizetype(sizeof address.sun_path));
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    QCOMPARE(::bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

} // namespace

class SafeFileTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(m_directory->isValid());
    }

    void whatIsWrittenIsRead_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("text") << QStringLiteral("file") << QByteArray("text\n");
        QTest::newRow("nothing") << QStringLiteral("file") << QByteArray("");
        QTest::newRow("zero bytes in it") << QStringLiteral("file") << QByteArray("a\0b\0", 4);
        QTest::newRow("as long as the limit") << QStringLiteral("file") << QByteArray(limit, 'x');
        QTest::newRow("in new directories") << QStringLiteral("a/b/c/file") << QByteArray("text");
        QTest::newRow("name with blanks") << QStringLiteral("my home/a file") << QByteArray("text");
        QTest::newRow("name beyond ASCII") << QStringLiteral("Ωμέγα/файл-文件-🦊") << QByteArray("text");
        QTest::newRow("name with specials") << QStringLiteral("*?[\"'$\n/%1;") << QByteArray("text");
    }

    void whatIsWrittenIsRead() {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QVERIFY(SafeFile::replace(at(name), bytes));
        const SafeFile::Contents contents = SafeFile::read(at(name), limit);
        QCOMPARE(contents.state, State::read);
        QCOMPARE(contents.bytes, bytes);
        QVERIFY(SafeFile::replace(at(name), "other"));
        QCOMPARE(contentOf(at(name)), QByteArray("other"));
        QCOMPARE(entriesBeside(name).size(), 1);
    }

    void onlyTheUserMayReadWhatIsWritten() {
        const mode_t before = ::umask(0);
        QVERIFY(SafeFile::replace(at("a/b/file"), "text"));
        put(at("open"), "text");
        QVERIFY(SafeFile::replace(at("open"), "text"));
        ::umask(before);
        QCOMPARE(modeOf(at("a")), mode_t(0700));
        QCOMPARE(modeOf(at("a/b")), mode_t(0700));
        QCOMPARE(modeOf(at("a/b/file")), mode_t(0600));
        QCOMPARE(modeOf(at("open")), mode_t(0600));
    }

    void aFileThatIsNotThereIsMissing() {
        put(at("file"), "text");
        QCOMPARE(SafeFile::read(at("none"), limit).state, State::missing);
        QCOMPARE(SafeFile::read(at("none/none"), limit).state, State::missing);
        QCOMPARE(SafeFile::read(at("file/none"), limit).state, State::missing);
        QCOMPARE(SafeFile::read(QString(), limit).state, State::missing);
    }

    void aFileBeyondTheLimitIsNotRead() {
        put(at("file"), QByteArray(limit + 1, 'x'));
        QCOMPARE(SafeFile::read(at("file"), limit).state, State::tooLarge);
        QVERIFY(SafeFile::read(at("file"), limit).bytes.isEmpty());
        QFile sparse(at("sparse"));
        QVERIFY(sparse.open(QIODevice::WriteOnly) && sparse.resize(qint64(1) << 30));
        QCOMPARE(SafeFile::read(at("sparse"), limit).state, State::tooLarge);
    }

    void aFileThatSaysItIsEmptyIsReadToItsEnd() {
        // Such as those of /proc: what counts is what can be read.
        const SafeFile::Contents contents = SafeFile::read(QStringLiteral("/proc/self/stat"), 100'000);
        QCOMPARE(contents.state, State::read);
        QVERIFY(contents.bytes.endsWith('\n') && contents.bytes.size() > 40);
        QCOMPARE(SafeFile::read(QStringLiteral("/proc/self/stat"), 40).state, State::tooLarge);
    }

    void whatIsNoFileIsNeitherReadNorReplacedAndNeverBlocks_data() {
        QTest::addColumn<QString>("name");
        for (const char* name : {"directory", "fifo", "socket", "to device", "to itself", "to directory", "to fifo"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void whatIsNoFileIsNeitherReadNorReplacedAndNeverBlocks() {
        QFETCH(QString, name);
        QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("directory")));
        QCOMPARE(::mkfifo(QFile::encodeName(at("fifo")), 0600), 0);
        bindSocket(QFile::encodeName(at("socket")));
        QVERIFY(QFile::link(QStringLiteral("/dev/zero"), at("to device")));
        QVERIFY(QFile::link(QStringLiteral("to itself"), at("to itself")));
        QVERIFY(QFile::link(QStringLiteral("directory"), at("to directory")));
        QVERIFY(QFile::link(QStringLiteral("fifo"), at("to fifo")));
        const QStringList before = entriesBeside(name);
        const mode_t mode = modeOf(at(name));
        QCOMPARE(SafeFile::read(at(name), limit).state, State::unreadable);
        QVERIFY(!SafeFile::replace(at(name), "text"));
        QVERIFY(!SafeFile::keepAside(at(name), QStringLiteral(".aside")));
        QCOMPARE(entriesBeside(name), before);
        QCOMPARE(modeOf(at(name)), mode);
    }

    void aPathThatLeadsNowhereIsNotWritten() {
        put(at("file"), "text");
        QVERIFY(!SafeFile::replace(at("file/below"), "text"));
        QVERIFY(!SafeFile::replace(QString(), "text"));
        QVERIFY(!SafeFile::replace(QStringLiteral("/proc/none/file"), "text"));
        QVERIFY(!SafeFile::replace(at(QString(300, QLatin1Char('n'))), "text"));
        QCOMPARE(entriesBeside(QStringLiteral("file")), QStringList{QStringLiteral("file")});
    }

    void aSymbolicLinkIsWrittenThrough_data() {
        QTest::addColumn<QString>("link");
        QTest::newRow("relative") << QStringLiteral("relative");
        QTest::newRow("absolute") << QStringLiteral("absolute");
        QTest::newRow("chain") << QStringLiteral("deep/chain");
        QTest::newRow("through a linked directory") << QStringLiteral("linked/relative");
    }

    void aSymbolicLinkIsWrittenThrough() {
        QFETCH(QString, link);
        QVERIFY(QDir(m_directory->path()).mkpath(QStringLiteral("dotfiles")));
        QVERIFY(QDir(m_directory->path()).mkpath(QStringLiteral("deep")));
        put(at("dotfiles/real"), "old");
        QVERIFY(QFile::link(QStringLiteral("dotfiles/real"), at("relative")));
        QVERIFY(QFile::link(at("dotfiles/real"), at("absolute")));
        QVERIFY(QFile::link(QStringLiteral("../relative"), at("deep/chain")));
        QVERIFY(QFile::link(QStringLiteral("."), at("linked")));
        QVERIFY(SafeFile::replace(at(link), "new"));
        QVERIFY(QFileInfo(at(link)).isSymLink());
        QCOMPARE(contentOf(at("dotfiles/real")), QByteArray("new"));
        QCOMPARE(entriesBeside(QStringLiteral("dotfiles/real")), QStringList{QStringLiteral("real")});
    }

    void aLinkToAFileThatIsYetToBeMadeIsKept() {
        QVERIFY(QFile::link(QStringLiteral("dotfiles/new/real"), at("link")));
        QCOMPARE(SafeFile::read(at("link"), limit).state, State::missing);
        QVERIFY(SafeFile::replace(at("link"), "text"));
        QVERIFY(QFileInfo(at("link")).isSymLink());
        QCOMPARE(contentOf(at("dotfiles/new/real")), QByteArray("text"));
    }

    void leftOversOfKilledWritersAreRemovedAndNothingElse() {
        const QStringList others{QStringLiteral(".file.0123456789abcde.tmp"),
                                 QStringLiteral(".other.0123456789abcdef.tmp"),
                                 QStringLiteral("file.0123456789abcdef.tmp"),
                                 QStringLiteral(".file.0123456789abcdef.txt"), QStringLiteral("file.tmp")};
        for (const QString& name : others)
            put(at(name), "other");
        put(at(".file.0123456789abcdef.tmp"), "left over");
        put(at(".file.fedcba9876543210.tmp"), "");
        QVERIFY(SafeFile::replace(at("file"), "text"));
        QStringList expected = others + QStringList{QStringLiteral("file")};
        expected.sort();
        QCOMPARE(entriesBeside(QStringLiteral("file")), expected);
    }

    void theTemporaryFileOfALiveWriterIsLeftAlone() {
        put(at(".file.0123456789abcdef.tmp"), "being written");
        {
            const FileDescriptor writer(::open(QFile::encodeName(at(".file.0123456789abcdef.tmp")), O_RDONLY));
            QCOMPARE(::flock(writer.get(), LOCK_EX | LOCK_NB), 0);
            QVERIFY(SafeFile::replace(at("file"), "text"));
            QCOMPARE(contentOf(at(".file.0123456789abcdef.tmp")), QByteArray("being written"));
        }
        QVERIFY(SafeFile::replace(at("file"), "text"));
        QCOMPARE(entriesBeside(QStringLiteral("file")), QStringList{QStringLiteral("file")});
    }

    void writersAtTheSameTimeNeitherTearNorRemoveEachOthersFiles() {
        const QByteArray first(100'000, 'a');
        const QByteArray second(50'000, 'b');
        std::atomic<int> failures = 0;
        const auto write = [&](const QByteArray& bytes) {
            return [&failures, &bytes, path = at("file")] {
                for (int i = 0; i < 40; ++i)
                    failures += !SafeFile::replace(path, bytes);
            };
        };
        const std::unique_ptr<QThread> one(QThread::create(write(first)));
        const std::unique_ptr<QThread> two(QThread::create(write(second)));
        one->start();
        two->start();
        while (!one->isFinished() || !two->isFinished()) {
            const SafeFile::Contents seen = SafeFile::read(at("file"), 1'000'000);
            QVERIFY(seen.state == State::missing || seen.bytes == first || seen.bytes == second);
        }
        QVERIFY(one->wait() && two->wait());
        QCOMPARE(failures.load(), 0);
        QCOMPARE(entriesBeside(QStringLiteral("file")), QStringList{QStringLiteral("file")});
    }

    void aFileIsKeptAsideOnce() {
        put(at("file"), "first");
        QVERIFY(SafeFile::keepAside(at("file"), QStringLiteral(".aside")));
        QVERIFY(SafeFile::replace(at("file"), "second"));
        QCOMPARE(contentOf(at("file.aside")), QByteArray("first"));
        QVERIFY(SafeFile::keepAside(at("file"), QStringLiteral(".aside")));
        QCOMPARE(contentOf(at("file.aside")), QByteArray("first"));
        QCOMPARE(contentOf(at("file")), QByteArray("second"));
        QVERIFY(!SafeFile::keepAside(at("none"), QStringLiteral(".aside")));
    }

    void aRemovedFileIsGoneWithWhatWasLeftOfItsWriting() {
        put(at("file"), "text");
        put(at(".file.0123456789abcdef.tmp"), "te");
        put(at("other"), "text");
        QVERIFY(SafeFile::remove(at("file")));
        QCOMPARE(entriesBeside(QStringLiteral("file")), QStringList{QStringLiteral("other")});
        QVERIFY(SafeFile::remove(at("file")));
        QVERIFY(SafeFile::remove(at("no directory/file")));
    }

    void aLinkIsRemovedAndNotWhatItNames() {
        put(at("file"), "text");
        QVERIFY(QFile::link(at("file"), at("link")));
        QVERIFY(SafeFile::remove(at("link")));
        QCOMPARE(entriesBeside(QStringLiteral("file")), QStringList{QStringLiteral("file")});
    }

    void whatIsNoFileIsNotRemoved() {
        QVERIFY(QDir().mkpath(at("directory")));
        QVERIFY(!SafeFile::remove(at("directory")));
        QVERIFY(QFileInfo(at("directory")).isDir());
    }

    void anEditLockMakesTheDirectoryAndLetsGo() {
        const QString path = at("new/file");
        const auto isLocked = [&] {
            const FileDescriptor directory(::open(QFile::encodeName(at("new")), O_RDONLY | O_DIRECTORY));
            return ::flock(directory.get(), LOCK_EX | LOCK_NB) != 0;
        };
        {
            const SafeFile::EditLock lock(path);
            QVERIFY(isLocked());
            QVERIFY(SafeFile::replace(path, "text"));
        }
        QVERIFY(!isLocked());
    }

    void anEditLockDoesNotWaitForeverForOneThatHangs() {
        const FileDescriptor hanging(::open(QFile::encodeName(m_directory->path()), O_RDONLY | O_DIRECTORY));
        QCOMPARE(::flock(hanging.get(), LOCK_EX), 0);
        const SafeFile::EditLock lock(at("file"));
        QVERIFY(SafeFile::replace(at("file"), "text"));
    }

private:
    QString at(const QString& name) const { return m_directory->filePath(name); }
    QString at(const char* name) const { return at(QString::fromUtf8(name)); }

    QStringList entriesBeside(const QString& name) const { return TestFiles::entriesOf(QFileInfo(at(name)).path()); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(SafeFileTest)
#include "SafeFileTest.moc"
