#include "Successor.h"

#include "Support/Await.h"
#include "Support/PrivateBus.h"
#include "Support/TestFiles.h"
#include "Support/Worker.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace torvane;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int patience = 120'000;
constexpr std::chrono::milliseconds generous = 120s;
const QString program = QStringLiteral(SUCCESSOR_PROGRAM);

QDBusConnection noBus() {
    return QDBusConnection(u"there is none"_s);
}

} // namespace

class SuccessorTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        qunsetenv("WAYLAND_DISPLAY");
        qputenv("DISPLAY", ":test");
        qputenv("XDG_ACTIVATION_TOKEN", "for this launch alone");
        qputenv("SUCCESSOR_BYTES", "caf\xe9=\xff");
        qputenv("SUCCESSOR_NOTE", QFile::encodeName(note()));
    }

    void init() {
        QFile::remove(note());
        // The kernel's names are the whole machine's.
        m_id = u"org.velisk.T"_s + QUuid::createUuid().toString(QUuid::Id128);
        qputenv("SUCCESSOR_ID", m_id.toUtf8());
    }

    void aSuccessorTakesThePlaceAndStaysWhenThisOneGoes() {
        PrivateBus bus;
        const QDBusConnection observer = bus.connect();
        be("there", bus.address());
        {
            const First first(bus.connect(), m_id);
            QVERIFY(first.relaunch(program, generous));
            QCOMPARE(ownerOn(observer), startedProgram());
        }
        QCOMPARE(ownerOn(observer), startedProgram());
        QVERIFY(TestFiles::contentOf(note()).endsWith("without a token caf\xe9=\xff"));
        QVERIFY(::getsid(startedProgram()) == startedProgram());
        end();
    }

    void aSuccessorThatFailsGivesThePlaceBack_data() {
        QTest::addColumn<QByteArray>("does");
        QTest::addColumn<std::chrono::milliseconds>("limit");
        QTest::newRow("ends") << QByteArray("ends") << generous;
        QTest::newRow("crashes") << QByteArray("crashes") << generous;
        QTest::newRow("crashes when it is there") << QByteArray("crashes when it is there") << generous;
        QTest::newRow("stays away") << QByteArray("stays away") << std::chrono::milliseconds(2s);
        QTest::newRow("hangs when it is there")
            << QByteArray("hangs when it is there") << std::chrono::milliseconds(2s);
    }

    void aSuccessorThatFailsGivesThePlaceBack() {
        QFETCH(QByteArray, does);
        QFETCH(std::chrono::milliseconds, limit);
        PrivateBus bus;
        const QDBusConnection observer = bus.connect();
        be(does, bus.address());
        const First first(bus.connect(), m_id);
        QVERIFY(!first.relaunch(program, limit));
        QVERIFY(QTest::qWaitFor([&] { return ownerOn(observer) == QCoreApplication::applicationPid(); }, patience));
        waitUntilGone();
        // And it is called forward as before.
        const First another(bus.connect(), m_id);
        QVERIFY(QTest::qWaitFor([&] { return first.activations() == 1; }, patience));
    }

    void aFileThatIsNoProgramGivesThePlaceBack() {
        PrivateBus bus;
        const QDBusConnection observer = bus.connect();
        const First first(bus.connect(), m_id);
        QVERIFY(!first.relaunch(note(), generous));
        QCOMPARE(ownerOn(observer), QCoreApplication::applicationPid());
    }

    void somebodyElseInThePlaceIsNoSuccessor() {
        PrivateBus bus;
        be("stays away", bus.address());
        const First first(bus.connect(), m_id);
        QDBusConnection stranger = bus.connect();
        const auto takeWhenFree = [&] { stranger.interface()->registerService(m_id); };
        const QDBusServiceWatcher watcher(m_id, stranger, QDBusServiceWatcher::WatchForUnregistration);
        connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, this, takeWhenFree);
        QVERIFY(!first.relaunch(program, 2s));
        waitUntilGone();
    }

    void givingUpEndsWhatWasStarted() {
        PrivateBus bus;
        be("stays away", bus.address());
        const First first(bus.connect(), m_id);
        Successor successor = first.successor(generous);
        {
            const Task<bool> task = successor.relaunch(program);
            task.start();
            QVERIFY(QTest::qWaitFor([this] { return QFile::exists(note()) && startedProgram() > 0; }, patience));
        }
        waitUntilGone();
    }

    void withoutABusTheSocketChangesHands() {
        be("there", u"unix:path=/nonexistent"_s);
        {
            const First first(noBus(), m_id);
            QVERIFY(first.relaunch(program, generous));
            QCOMPARE(first.activations(), 0);
        }
        QCOMPARE(::kill(startedProgram(), 0), 0);
        const First another(noBus(), m_id, First::Expects::deferral);
        end();
    }

    void withoutABusASuccessorThatFailsGivesTheSocketBack() {
        be("crashes", u"unix:path=/nonexistent"_s);
        const First first(noBus(), m_id);
        QVERIFY(!first.relaunch(program, generous));
        const First another(noBus(), m_id, First::Expects::deferral);
        QVERIFY(QTest::qWaitFor([&] { return first.activations() == 1; }, patience));
    }

private:
    /// An instance, which has the place unless it finds it taken.
    class First final {
    public:
        enum class Expects { anything, deferral };

        First(const QDBusConnection& bus, const QString& id, Expects expects = Expects::anything)
            : m_instance(bus, id)
            , m_bus(bus)
            , m_id(id) {
            QSignalSpy first(&m_instance, &ApplicationInstance::becameFirst);
            QSignalSpy deferred(&m_instance, &ApplicationInstance::deferred);
            m_instance.settle();
            const bool isSettled = QTest::qWaitFor([&] { return !first.isEmpty() || !deferred.isEmpty(); }, patience);
            QVERIFY(isSettled);
            QVERIFY(expects != Expects::deferral || deferred == QList<QVariantList>{{true}});
        }

        Successor successor(std::chrono::milliseconds limit) const { return {m_instance, m_bus, m_id, limit}; }

        bool relaunch(const QString& file, std::chrono::milliseconds limit) const {
            Successor own = successor(limit);
            return await(own.relaunch(file));
        }

        qsizetype activations() const { return m_activated.size(); }

    private:
        mutable ApplicationInstance m_instance;
        const QDBusConnection m_bus;
        const QString m_id;
        QSignalSpy m_activated{&m_instance, &ApplicationInstance::activated};
    };

    QString note() const { return m_folder.filePath(u"note"_s); }

    static void be(const QByteArray& does, const QString& bus) {
        qputenv("SUCCESSOR_DOES", does);
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.toUtf8());
    }

    pid_t startedProgram() const { return TestFiles::contentOf(note()).split(' ').first().toInt(); }

    /// Who has the place, as somebody else on the bus sees it.
    pid_t ownerOn(const QDBusConnection& observer) const {
        const QDBusReply<uint> owner = observer.interface()->servicePid(m_id);
        return owner.isValid() ? static_cast<pid_t>(owner.value()) : 0;
    }

    /// Ended and reaped.
    void waitUntilGone() const {
        worker().waitForDone();
        const pid_t program = startedProgram();
        QVERIFY(program > 0);
        QVERIFY(QTest::qWaitFor([program] { return ::kill(program, 0) != 0; }, patience));
    }

    void end() const {
        QCOMPARE(::kill(startedProgram(), SIGKILL), 0);
        QCOMPARE(::waitpid(startedProgram(), nullptr, 0), startedProgram());
    }

    QTemporaryDir m_folder;
    QString m_id;
};

QTEST_GUILESS_MAIN(SuccessorTest)
#include "SuccessorTest.moc"
