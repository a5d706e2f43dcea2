#include "Support/DefaultsFiles.h"

#include "Support/TestFiles.h"
#include "Support/UserDefaults.h"
#include "Support/Worker.h"

#include <QDir>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

using namespace torvane;
using TestFiles::contentOnceWritten;
using TestFiles::put;

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

} // namespace

class DefaultsFilesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(m_directory->isValid());
    }

    void cleanup() { worker().waitForDone(); }

    void aValueWhoseWriteFailedIsTriedAgainWhenAnythingIsSet() {
        QVERIFY(QDir().mkpath(path()));
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(a, qint64(5));
        worker().waitForDone();
        QVERIFY(QDir().rmdir(path()));
        defaults.setData(QStringLiteral("data"), "bytes");
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"a\": 5\n}\n"));
        QCOMPARE(contentOnceWritten(dataDirectory() + QStringLiteral("/data")), QByteArray("bytes"));
    }

    void theNewestDataWinAmongThoseWhoseWriteFailed() {
        const QString entry = dataDirectory() + QStringLiteral("/data");
        QVERIFY(QDir().mkpath(entry));
        UserDefaults defaults(path(), dataDirectory());
        defaults.setData(QStringLiteral("data"), "older");
        worker().waitForDone();
        defaults.setData(QStringLiteral("data"), "newer");
        worker().waitForDone();
        QVERIFY(QDir().rmdir(entry));
        defaults.set(a, true);
        QCOMPARE(contentOnceWritten(entry), QByteArray("newer"));
    }

    void handingOverReturnsWhileTheWorkerIsBusyAndOlderValuesAreSkipped() {
        UserDefaults defaults(path(), dataDirectory());
        QSemaphore gate;
        worker().start([&] { gate.acquire(); });
        for (int i = 0; i <= 1000; ++i) {
            defaults.set(a, qint64(i));
            defaults.setData(QStringLiteral("data"), QByteArray(i, 'x'));
        }
        QCOMPARE(defaults.integer(a), 1000);
        QCOMPARE(defaults.data(QStringLiteral("data")), QByteArray(1000, 'x'));
        QVERIFY(!QFile::exists(path()));
        gate.release();
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"a\": 1000\n}\n"));
        QCOMPARE(contentOnceWritten(dataDirectory() + QStringLiteral("/data")), QByteArray(1000, 'x'));
    }

    void newMembersComeInTheOrderOfTheirAssignment() {
        put(path(), "{}");
        UserDefaults defaults(path(), dataDirectory());
        QSemaphore gate;
        worker().start([&] { gate.acquire(); });
        defaults.set(b, true);
        defaults.set(a, true);
        defaults.set(b, false);
        gate.release();
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"b\": false,\n  \"a\": true\n}\n"));
    }

    void writesUnderWayOutliveTheirUserDefaults() {
        QSemaphore gate;
        worker().start([&] { gate.acquire(); });
        {
            UserDefaults defaults(path(), dataDirectory());
            defaults.set(a, true);
        }
        gate.release();
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"a\": true\n}\n"));
    }

    void twoProgramsKeepEachOthersValues() {
        UserDefaults one(path(), dataDirectory());
        UserDefaults two(path(), dataDirectory());
        one.set(a, qint64(1));
        worker().waitForDone();
        two.set(b, qint64(2));
        worker().waitForDone();
        one.set(a, qint64(3));
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"a\": 3,\n  \"b\": 2\n}\n"));
    }

    void whatAnEditorChangesMeanwhileIsKept() {
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(a, qint64(1));
        worker().waitForDone();
        put(path(), R"({"b": "by hand", "a": 7})");
        defaults.set(QStringLiteral("c"), true);
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"b\": \"by hand\",\n  \"a\": 7,\n  \"c\": true\n}\n"));
    }

    void aValueThatWouldMakeTheFileUnreadableIsNotWritten() {
        put(path(), R"({"a": 1})");
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(b, QString(1 << 20, QLatin1Char('x')));
        QCOMPARE(contentOnceWritten(path()), QByteArray(R"({"a": 1})"));
        QCOMPARE(defaults.string(b)->size(), 1 << 20);
        defaults.set(b, QStringLiteral("short"));
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"a\": 1,\n  \"b\": \"short\"\n}\n"));
    }

    void aFileThatIsGoneIsWrittenAnewFromMemory() {
        put(path(), R"({"x": 1.5, "a": 1})");
        UserDefaults defaults(path(), dataDirectory());
        QVERIFY(QFile::remove(path()));
        defaults.set(a, qint64(2));
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"x\": 1.5,\n  \"a\": 2\n}\n"));
        put(path(), "damaged meanwhile");
        defaults.set(a, qint64(3));
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"x\": 1.5,\n  \"a\": 3\n}\n"));
        QCOMPARE(contentOnceWritten(path() + QStringLiteral(".damaged")), QByteArray("damaged meanwhile"));
    }

private:
    QString path() const { return m_directory->filePath(QStringLiteral("config/preferences.json")); }
    QString dataDirectory() const { return m_directory->filePath(QStringLiteral("cache")); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(DefaultsFilesTest)
#include "DefaultsFilesTest.moc"
