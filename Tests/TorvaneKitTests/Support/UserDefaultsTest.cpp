#include "Support/UserDefaults.h"

#include "Support/BaseDirectory.h"
#include "Support/TestFiles.h"
#include "Support/Worker.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace torvane;
using TestFiles::contentOnceWritten;
using TestFiles::put;

namespace {

constexpr qint64 mebibyte = 1 << 20;

/// Sets an environment variable and restores it; none unsets it.
class Environment final {
public:
    Environment(const char* name, std::optional<QByteArray> value)
        : m_name(name)
        , m_before(qgetenv(name))
        , m_wasSet(qEnvironmentVariableIsSet(name)) {
        value ? qputenv(name, *value) : qunsetenv(name);
    }
    ~Environment() { m_wasSet ? qputenv(m_name, m_before) : qunsetenv(m_name); }

private:
    const char* m_name;
    QByteArray m_before;
    bool m_wasSet;
};

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

} // namespace

class UserDefaultsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(m_directory->isValid());
    }

    void cleanup() { worker().waitForDone(); }

    void aValueIsReadAsItsOwnTypeOnly_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("types");
        const auto row = [](const char* value, const char* types) {
            QTest::newRow(value) << QByteArray(value) << QString::fromLatin1(types);
        };
        row("true", "boolean");
        row("false", "boolean");
        row("0", "integer");
        row("-7", "integer");
        row("9223372036854775807", "integer");
        row("-9223372036854775808", "integer");
        row("9223372036854775808", "");
        row("1.0", "");
        row("1e2", "");
        row("null", "");
        row(R"("")", "string");
        row(R"("true")", "string");
        row(R"("5")", "string");
        row(R"("\u00e9\ud83e\udd8a")", "string");
        row("[]", "stringList");
        row(R"(["a", "b"])", "stringList");
        row(R"(["a", 1])", "");
        row(R"([["a"]])", "");
        row(R"({"a": "b"})", "");
    }

    void aValueIsReadAsItsOwnTypeOnly() {
        QFETCH(QByteArray, value);
        QFETCH(QString, types);
        put(path(), "{\"a\": " + value + "}");
        const UserDefaults defaults(path(), dataDirectory());
        QStringList readable;
        if (defaults.boolean(a))
            readable.append(QStringLiteral("boolean"));
        if (defaults.integer(a))
            readable.append(QStringLiteral("integer"));
        if (defaults.string(a))
            readable.append(QStringLiteral("string"));
        if (defaults.stringList(a))
            readable.append(QStringLiteral("stringList"));
        QCOMPARE(readable.join(QLatin1Char(' ')), types);
    }

    void valuesAreReadExactly() {
        put(path(),
            R"({"true": true, "least": -9223372036854775808, "text": "\u00e9\n\u0022", "list": ["", "x"], "a": 1, "a": 2})");
        const UserDefaults defaults(path(), dataDirectory());
        QCOMPARE(defaults.boolean(QStringLiteral("true")), true);
        QCOMPARE(defaults.integer(QStringLiteral("least")), std::numeric_limits<qint64>::min());
        QCOMPARE(defaults.string(QStringLiteral("text")), QStringLiteral("é\n\""));
        QCOMPARE(defaults.stringList(QStringLiteral("list")), (QStringList{QString(), QStringLiteral("x")}));
        QCOMPARE(defaults.integer(a), 2);
        QCOMPARE(defaults.integer(QStringLiteral("A")), std::nullopt);
    }

    void whatIsSetIsReadAtOnceAndAfterARestart() {
        const QStringList list{QStringLiteral("één"), QString(), QStringLiteral("\"\\\n")};
        UserDefaults defaults(path(), dataDirectory());
        const auto check = [&](const UserDefaults& read) {
            QCOMPARE(read.boolean(QStringLiteral("boolean")), false);
            QCOMPARE(read.integer(QStringLiteral("integer")), std::numeric_limits<qint64>::max());
            QCOMPARE(read.string(QStringLiteral("string")), QStringLiteral("a🦊\u2028"));
            QCOMPARE(read.stringList(QStringLiteral("list")), list);
            QCOMPARE(read.stringList(QStringLiteral("none")), QStringList());
            QCOMPARE(read.data(QStringLiteral("data")), QByteArray("\0\xff raw", 6));
        };
        defaults.set(QStringLiteral("boolean"), false);
        defaults.set(QStringLiteral("integer"), std::numeric_limits<qint64>::max());
        defaults.set(QStringLiteral("string"), QStringLiteral("a🦊\u2028"));
        defaults.set(QStringLiteral("list"), list);
        defaults.set(QStringLiteral("none"), QStringList());
        defaults.setData(QStringLiteral("data"), QByteArray("\0\xff raw", 6));
        check(defaults);
        worker().waitForDone();
        check(UserDefaults(path(), dataDirectory()));
    }

    void theFileIsForPeopleToRead() {
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(a, QStringLiteral("x"));
        defaults.set(b, true);
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"a\": \"x\",\n  \"b\": true\n}\n"));
        struct stat status {};
        QCOMPARE(::stat(QFile::encodeName(path()), &status), 0);
        QCOMPARE(status.st_mode & 07777, mode_t(0600));
    }

    void membersThatNobodyAssignsStayVerbatim() {
        put(path(), R"({"x":{"deep" :[1.50, 1e400,{}]},"a" : 1,"y":"\u00E9\/","z":18446744073709551616})");
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(a, true);
        defaults.set(b, qint64(2));
        QCOMPARE(contentOnceWritten(path()),
                 QByteArray("{\n  \"x\": {\"deep\" :[1.50, 1e400,{}]},\n  \"a\": true,\n"
                            "  \"y\": \"\\u00E9\\/\",\n  \"z\": 18446744073709551616,\n  \"b\": 2\n}\n"));
    }

    void textThatIsNotUnicodeIsStoredWithReplacements() {
        UserDefaults defaults(path(), dataDirectory());
        const QChar high(0xd83e);
        const QChar low(0xdd8a);
        const QString text = QString(low) + high + high + low + QLatin1Char('x') + high;
        const QString stored = QStringLiteral("\uFFFD\uFFFD\U0001F98Ax\uFFFD");
        defaults.set(a, text);
        defaults.set(b, QStringList{text});
        QCOMPARE(defaults.string(a), stored);
        QCOMPARE(defaults.stringList(b), QStringList{stored});
        worker().waitForDone();
        QCOMPARE(UserDefaults(path(), dataDirectory()).string(a), stored);
    }

    void aDamagedFileCountsAsEmptyAndIsKeptAsideAtTheFirstAssignment_data() {
        QTest::addColumn<QByteArray>("damaged");
        QTest::newRow("cut off") << QByteArray("{\"a\": 1, \"b");
        QTest::newRow("a list") << QByteArray(R"(["a"])");
        QTest::newRow("a byte order mark") << QByteArray("\xef\xbb\xbf{\"a\": 1}");
        QTest::newRow("zero bytes") << QByteArray(4096, '\0');
        QTest::newRow("a blank") << QByteArray(" ");
        QTest::newRow("bytes behind it") << QByteArray("{\"a\": 1}}");
        QTest::newRow("not UTF-8") << QByteArray("{\"a\": \"\xff\"}");
        QTest::newRow("deeply nested") << QByteArray(100'000, '[');
        QTest::newRow("too large") << "{\"a\": 1" + QByteArray(mebibyte, ' ') + '}';
    }

    void aDamagedFileCountsAsEmptyAndIsKeptAsideAtTheFirstAssignment() {
        QFETCH(QByteArray, damaged);
        put(path(), damaged);
        UserDefaults defaults(path(), dataDirectory());
        QCOMPARE(defaults.integer(a), std::nullopt);
        QCOMPARE(contentOnceWritten(path()), damaged);
        QVERIFY(!QFile::exists(path() + QStringLiteral(".damaged")));
        defaults.set(b, true);
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"b\": true\n}\n"));
        QCOMPARE(contentOnceWritten(path() + QStringLiteral(".damaged")), damaged);
        QCOMPARE(entries(),
                 (QStringList{QStringLiteral("preferences.json"), QStringLiteral("preferences.json.damaged")}));
    }

    void aFileAsideIsNeverOverwritten() {
        put(path() + QStringLiteral(".damaged"), "first");
        put(path(), "second");
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(b, true);
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"b\": true\n}\n"));
        QCOMPARE(contentOnceWritten(path() + QStringLiteral(".damaged")), QByteArray("first"));
    }

    void anEmptyFileIsNotKeptAside() {
        put(path(), "");
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(b, true);
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"b\": true\n}\n"));
        QCOMPARE(entries(), QStringList{QStringLiteral("preferences.json")});
    }

    void aHugeFileIsKeptAsideUnread() {
        QDir().mkpath(QFileInfo(path()).path());
        QFile huge(path());
        QVERIFY(huge.open(QIODevice::WriteOnly) && huge.resize(1024 * mebibyte));
        UserDefaults defaults(path(), dataDirectory());
        defaults.set(b, true);
        QCOMPARE(contentOnceWritten(path()), QByteArray("{\n  \"b\": true\n}\n"));
        QCOMPARE(QFileInfo(path() + QStringLiteral(".damaged")).size(), 1024 * mebibyte);
    }

    void whatIsNoFileIsLeftAloneAndValuesStayInMemory_data() {
        QTest::addColumn<bool>("isFifo");
        QTest::newRow("directory") << false;
        QTest::newRow("fifo") << true;
    }

    void whatIsNoFileIsLeftAloneAndValuesStayInMemory() {
        QFETCH(bool, isFifo);
        const auto place = [&](const QString& at) {
            QVERIFY(QDir().mkpath(isFifo ? QFileInfo(at).path() : at));
            QVERIFY(!isFifo || ::mkfifo(QFile::encodeName(at), 0600) == 0);
        };
        place(path());
        place(dataDirectory() + QStringLiteral("/data"));
        UserDefaults defaults(path(), dataDirectory());
        QCOMPARE(defaults.data(QStringLiteral("data")), std::nullopt);
        defaults.set(a, qint64(5));
        defaults.setData(QStringLiteral("data"), "bytes");
        worker().waitForDone();
        QCOMPARE(defaults.integer(a), 5);
        QCOMPARE(defaults.data(QStringLiteral("data")), QByteArray("bytes"));
        QVERIFY(isFifo ? !QFileInfo(path()).isFile() : QFileInfo(path()).isDir());
        QCOMPARE(entries(), QStringList{QStringLiteral("preferences.json")});
    }

    void dataThatAreTooLargeOrMissingAreNone() {
        const UserDefaults defaults(path(), dataDirectory());
        QCOMPARE(defaults.data(QStringLiteral("data")), std::nullopt);
        put(dataDirectory() + QStringLiteral("/empty"), "");
        QCOMPARE(defaults.data(QStringLiteral("empty")), QByteArray(""));
        QFile huge(dataDirectory() + QStringLiteral("/huge"));
        QVERIFY(huge.open(QIODevice::WriteOnly) && huge.resize(64 * mebibyte + 1));
        QCOMPARE(defaults.data(QStringLiteral("huge")), std::nullopt);
    }

    void theStandardPlacesFollowTheBaseDirectories_data() {
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<QByteArray>("cache");
        QTest::addColumn<QString>("preferences");
        QTest::addColumn<QString>("data");
        const QString home = QStringLiteral("h ome é");
        const QString atHome = home + QStringLiteral("/.config/app/preferences.json");
        const QString cacheAtHome = home + QStringLiteral("/.cache/app/data");
        QTest::newRow("unset") << QByteArray() << QByteArray() << atHome << cacheAtHome;
        QTest::newRow("empty") << QByteArray("") << QByteArray("") << atHome << cacheAtHome;
        QTest::newRow("relative") << QByteArray("conf") << QByteArray("./cache") << atHome << cacheAtHome;
        QTest::newRow("with a tilde") << QByteArray("~/conf") << QByteArray("~") << atHome << cacheAtHome;
        QTest::newRow("absolute") << QByteArray("/c ö") << QByteArray("/d/")
                                  << QStringLiteral("c ö/app/preferences.json") << QStringLiteral("d/app/data");
    }

    void theStandardPlacesFollowTheBaseDirectories() {
        QFETCH(QByteArray, config);
        QFETCH(QByteArray, cache);
        QFETCH(QString, preferences);
        QFETCH(QString, data);
        const QByteArray root = QFile::encodeName(m_directory->path());
        const auto variable = [&](const QByteArray& value) -> std::optional<QByteArray> {
            if (value.isNull())
                return std::nullopt;
            return value.startsWith('/') ? root + value : value;
        };
        const Environment home("HOME", root + "/h ome \xc3\xa9");
        const Environment configHome("XDG_CONFIG_HOME", variable(config));
        const Environment cacheHome("XDG_CACHE_HOME", variable(cache));
        UserDefaults defaults = UserDefaults::standard(QStringLiteral("app"));
        defaults.set(a, true);
        defaults.setData(QStringLiteral("data"), "bytes");
        QCOMPARE(contentOnceWritten(m_directory->filePath(preferences)), QByteArray("{\n  \"a\": true\n}\n"));
        QCOMPARE(contentOnceWritten(m_directory->filePath(data)), QByteArray("bytes"));
    }

    void withoutAUsableHOMETheUserDatabaseHasTheHome() {
        const passwd* user = ::getpwuid(::getuid());
        QVERIFY(user);
        const QString home = QFile::decodeName(user->pw_dir);
        const Environment config("XDG_CONFIG_HOME", std::nullopt);
        const Environment cache("XDG_CACHE_HOME", std::nullopt);
        for (const std::optional<QByteArray>& value :
             {std::optional<QByteArray>(), std::optional(QByteArray("home"))}) {
            const Environment variable("HOME", value);
            QCOMPARE(BaseDirectory::config(), home + QStringLiteral("/.config"));
            QCOMPARE(BaseDirectory::cache(), home + QStringLiteral("/.cache"));
        }
    }

    void withoutAnyPlaceValuesLiveInMemory() {
        UserDefaults defaults{QString(), QString()};
        defaults.set(a, true);
        defaults.setData(QStringLiteral("data"), "bytes");
        worker().waitForDone();
        QCOMPARE(defaults.boolean(a), true);
        QCOMPARE(defaults.data(QStringLiteral("data")), QByteArray("bytes"));
    }

private:
    QString path() const { return m_directory->filePath(QStringLiteral("config/preferences.json")); }
    QString dataDirectory() const { return m_directory->filePath(QStringLiteral("cache")); }

    QStringList entries() const { return TestFiles::entriesOf(QFileInfo(path()).path()); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(UserDefaultsTest)
#include "UserDefaultsTest.moc"
