#include "FailingDisk.h"

#include "Support/SafeFile.h"
#include "Support/TestFiles.h"
#include "Support/UserDefaults.h"
#include "Support/Worker.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

using namespace torvane;
using FailingDisk::Fault;
using TestFiles::contentOf;

namespace {

const QByteArray oldPreferences = R"({"kept": [1.0], "theme": "Light"})";
const QByteArray newPreferences = "{\n  \"kept\": [1.0],\n  \"theme\": \"Dark\"\n}\n";
const QByteArray oldData = "old data";
const QByteArray newData(300, 'n');
const QString theme = QStringLiteral("theme");
const QString cached = QStringLiteral("cached");

} // namespace

/// Each call of a write fails in turn. Whatever call it is, the files are whole, the values are in memory, and the next
/// write that succeeds brings them to the disk.
class FailingDiskTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        // The faults are made here, so where there is a disk in memory it will do.
        const QString memory = QStringLiteral("/dev/shm");
        const QString place = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
        m_directory = std::make_unique<QTemporaryDir>(place + QStringLiteral("/FailingDiskTest-XXXXXX"));
        QVERIFY(m_directory->isValid());
    }

    void cleanup() { FailingDisk::disarm(); }

    void eachStepOfAReplacementIsCheckedAndTheRenameComesAfterTheBytesAreOnTheDisk_data() {
        QTest::addColumn<int>("call");
        QTest::addColumn<bool>("isReplaced");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("making the directory") << 1 << false << oldData;
        QTest::newRow("opening the temporary file") << 2 << false << oldData;
        QTest::newRow("locking it, which not every file system can") << 3 << true << newData;
        QTest::newRow("writing it") << 4 << false << oldData;
        QTest::newRow("syncing it") << 5 << false << oldData;
        QTest::newRow("renaming it") << 6 << false << oldData;
        QTest::newRow("opening the directory") << 7 << false << newData;
        QTest::newRow("syncing the directory") << 8 << false << newData;
        QTest::newRow("no step") << 9 << true << newData;
    }

    void eachStepOfAReplacementIsCheckedAndTheRenameComesAfterTheBytesAreOnTheDisk() {
        QFETCH(int, call);
        TestFiles::put(path(), oldData);
        FailingDisk::arm(root(), {call, EIO});
        QTEST(SafeFile::replace(path(), newData), "isReplaced");
        FailingDisk::disarm();
        QTEST(contentOf(path()), "content");
        QCOMPARE(TestFiles::entriesOf(home()), QStringList{QStringLiteral("preferences.json")});
    }

    void aFailingCallNeitherTearsFilesNorLosesValues_data() {
        QTest::addColumn<int>("error");
        QTest::addColumn<bool>("isLasting");
        QTest::addColumn<QByteArray>("present");
        const std::array errors{std::pair{"no space", ENOSPC}, std::pair{"disk error", EIO},
                                std::pair{"not permitted", EACCES}};
        const std::array beginnings{std::pair{"over a good file", oldPreferences},
                                    std::pair{"over a damaged file", QByteArray("{damaged")},
                                    std::pair{"over nothing", QByteArray()}};
        for (const auto& [errorName, error] : errors) {
            for (const auto& [beginning, present] : beginnings) {
                QTest::addRow("%s once, %s", errorName, beginning) << error << false << present;
                QTest::addRow("%s from then on, %s", errorName, beginning) << error << true << present;
            }
        }
    }

    void aFailingCallNeitherTearsFilesNorLosesValues() {
        QFETCH(int, error);
        QFETCH(bool, isLasting);
        QFETCH(QByteArray, present);
        int call = 0;
        int calls = 0;
        do {
            ++call;
            prepare(present);
            calls = writeWith({call, error, isLasting}, present);
            if (QTest::currentTestFailed())
                qFatal("at call %d", call);
        } while (call <= calls);
        QVERIFY2(call > 10, "too few calls were made to fail");
    }

    void interruptedCallsAreRepeated() {
        int call = 0;
        int calls = 0;
        int failures = 0;
        do {
            ++call;
            TestFiles::put(path(), oldPreferences);
            FailingDisk::arm(root(), {call, EINTR, false});
            const bool isReplaced = SafeFile::replace(path(), newData);
            const SafeFile::Contents contents = SafeFile::read(path(), 1000);
            calls = FailingDisk::disarm();
            // A few calls cannot be interrupted in reality; then the write fails as a whole.
            QCOMPARE(contents.bytes, isReplaced ? newData : oldPreferences);
            failures += !isReplaced;
        } while (call <= calls);
        QCOMPARE(failures, 2); // mkdir and rename
    }

    void shortWritesAreContinued() {
        FailingDisk::arm(root(), {0, 0, false, true});
        QVERIFY(SafeFile::replace(path(), newData));
        const int calls = FailingDisk::disarm();
        QVERIFY(calls > newData.size() / 7);
        QCOMPARE(contentOf(path()), newData);
    }

private:
    QString home() const { return m_directory->filePath(QStringLiteral("home")); }
    QByteArray root() const { return QFile::encodeName(home()); }
    QString path() const { return home() + QStringLiteral("/preferences.json"); }
    QString dataDirectory() const { return home() + QStringLiteral("/data"); }
    QString damagedPath() const { return path() + QStringLiteral(".damaged"); }

    void prepare(const QByteArray& present) const {
        QVERIFY(QDir(home()).removeRecursively());
        if (present.isEmpty())
            return;
        TestFiles::put(path(), present);
        TestFiles::put(dataDirectory() + QLatin1Char('/') + cached, oldData);
    }

    /// Sets values on the failing disk, looks, and then sets one on a good disk and looks again.
    int writeWith(const Fault& fault, const QByteArray& present) const {
        FailingDisk::arm(root(), fault);
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(theme, QStringLiteral("Dark"));
        defaults.setData(cached, newData);
        worker().waitForDone();
        const int calls = FailingDisk::disarm();
        [&] {
            QCOMPARE(defaults.string(theme), QStringLiteral("Dark"));
            QCOMPARE(defaults.data(cached), newData);
            checkFiles(present);
            defaults.set(QStringLiteral("sound"), true);
            worker().waitForDone();
            checkRecovered(present);
        }();
        return calls;
    }

    /// Each file is the old one or the new one, and a damaged one is still somewhere.
    void checkFiles(const QByteArray& present) const {
        const QByteArray wanted =
            present == oldPreferences ? newPreferences : QByteArray("{\n  \"theme\": \"Dark\"\n}\n");
        const QByteArray found = contentOf(path());
        const bool isOld = present.isEmpty() ? !QFile::exists(path()) : found == present;
        const bool isAside = contentOf(damagedPath()) == present;
        const bool isDamaged = !present.isEmpty() && present != oldPreferences;
        QVERIFY2(isOld || found == wanted || (isDamaged && isAside), found);
        QVERIFY(!isDamaged || isAside || isOld);
        const QByteArray data = contentOf(dataDirectory() + QLatin1Char('/') + cached);
        QVERIFY(data == newData || data == (present.isEmpty() ? QByteArray("cannot be opened") : oldData));
    }

    void checkRecovered(const QByteArray& present) const {
        const UserDefaults reopened(path(), dataDirectory());
        QCOMPARE(reopened.string(theme), QStringLiteral("Dark"));
        QCOMPARE(reopened.boolean(QStringLiteral("sound")), true);
        QCOMPARE(reopened.data(cached), newData);
        QCOMPARE(contentOf(path()).contains("\"kept\": [1.0]"), present == oldPreferences);
        QStringList expected{QStringLiteral("data"), QStringLiteral("preferences.json")};
        if (QFile::exists(damagedPath())) {
            QCOMPARE(contentOf(damagedPath()), present);
            expected.append(QStringLiteral("preferences.json.damaged"));
        }
        QCOMPARE(TestFiles::entriesOf(home()), expected);
        QCOMPARE(TestFiles::entriesOf(dataDirectory()), QStringList{cached});
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(FailingDiskTest)
#include "FailingDiskTest.moc"
