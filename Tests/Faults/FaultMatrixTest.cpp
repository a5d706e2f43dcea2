#include "FailingSockets.h"
#include "FaultyDesktop.h"
#include "Platform/ColorScheme.h"
#include "Platform/StatusNotifierItem.h"
#include "Platform/UserNotificationCenter.h"
#include "Support/TestFiles.h"
#include "Support/Worker.h"
#include "TorvaneKitTests/Coordination/LiveStore.h"
#include "TorvaneKitTests/Support/FailingDisk.h"

#include <QDir>
#include <QLoggingCategory>
#include <QTest>

#include <cerrno>
#include <map>

using namespace torvane;
using namespace Qt::StringLiterals;
using FailingSockets::Call;
using FailingSockets::Family;

namespace {

constexpr int limitMs = 60000;
const QString cached = u"cachedSnapshot"_s;

/// How many times each call of each subject was made to fail, all of which were survived.
std::map<QByteArray, std::map<QByteArray, int>> g_rounds;

void printMatrix() {
    std::map<QByteArray, int> columns;
    for (const auto& [subject, cells] : g_rounds) {
        for (const auto& [call, rounds] : cells)
            columns[call] += rounds;
    }
    QByteArray table = "| call |";
    for (const auto& [subject, cells] : g_rounds)
        table += ' ' + subject + " |";
    for (const auto& [call, total] : columns) {
        table += "\n| " + call + " |";
        for (const auto& [subject, cells] : g_rounds) {
            const auto cell = cells.find(call);
            table += cell == cells.cend() ? " |" : ' ' + QByteArray::number(cell->second) + " |";
        }
    }
    qInfo("rounds in which the n-th call failed, all survived:\n%s", table.constData());
}

/// What the bus is used for, on a connection of its own: all of it goes well, or the connection is lost.
struct BusUsers {
    explicit BusUsers(const QDBusConnection& connection)
        : bus(connection)
        , scheme(bus, palette)
        , item(bus, u"faults"_s, u"Communications"_s)
        , center(bus, {u"faults"_s, u"faults"_s}, NotificationRoute::desktop) {
        item.showMenu({{1, u"Quit"_s}});
        center.requestAuthorization();
        center.post({u"title"_s, u"body"_s});
    }

    bool isWell(const FaultyDesktop& desktop) const {
        return item.isRegistered() && scheme.preference() == ColorPreference::dark && desktop.notifications() > 0;
    }

    QDBusConnection bus;
    ApplicationPalette palette;
    ColorScheme scheme;
    StatusNotifierItem item;
    UserNotificationCenter center;
};

} // namespace

/// Each system call and each D-Bus call fails in turn, once and from then on, in everything that uses it. Nothing ends,
/// hangs or is torn; no wrong figure is shown; and when the fault is over, all is as it should be.
class FaultMatrixTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(u"org.velisk.Torvane.net.info=false"_s); }
    void cleanup() { stopFailing(); }
    void cleanupTestCase() { printMatrix(); }

    void filesSurviveACallOfTheDiskThatFails_data() {
        QTest::addColumn<QByteArray>("subject");
        QTest::addColumn<QByteArray>("call");
        for (const char* subject : {"preferences", "cached snapshot"}) {
            for (const char* call : {"open", "read", "write", "fsync", "rename", "mkdir", "flock", "unlink"})
                QTest::addRow("%s, %s", subject, call) << QByteArray(subject) << QByteArray(call);
        }
    }

    void filesSurviveACallOfTheDiskThatFails() {
        QFETCH(QByteArray, call);
        for (const int error : {EIO, ENOSPC}) {
            for (const bool isLasting : {false, true})
                failInTurn([&](int number) { return writeFiles({number, error, isLasting, false, call.constData()}); });
        }
        // A lock is wanted, but done without; and nothing is unlinked while all goes well.
        const QByteArrayList always{"open", "read", "write", "fsync", "rename", "mkdir"};
        QVERIFY(m_lastCount > 0 || !always.contains(call));
    }

    void pollsSurviveASocketThatFails_data() { addSocketRows("relay and nodes"); }

    void pollsSurviveASocketThatFails() {
        QFETCH(Call, function);
        QFETCH(int, error);
        LiveStore live;
        live.settings.badgeChain = BadgeChain::l2(u"Base"_s); // So that its nodes are asked too.
        live.openAndRefresh();
        for (QTimer* timer : live.timers())
            timer->stop(); // A poll of theirs in flight would take the refresh's place.
        for (const bool isLasting : {false, true})
            failInTurn([&](int number) { return poll(live, {function, number, error, isLasting}); });
        QVERIFY(m_lastCount > 1);
    }

    void theDesktopMayLoseItsBusAtAnyCall_data() { addSocketRows("panel, alerts, colours"); }

    void theDesktopMayLoseItsBusAtAnyCall() {
        QFETCH(Call, function);
        QFETCH(int, error);
        PrivateBus bus;
        FaultyDesktop desktop(bus);
        for (const bool isLasting : {false, true})
            failInTurn([&](int number) { return useBus(bus, desktop, {function, number, error, isLasting}); });
        QVERIFY(m_lastCount > 0);
    }

    void servicesMayFailAtAnyCall_data() {
        QTest::addColumn<QByteArray>("subject");
        QTest::addColumn<QByteArray>("call");
        QTest::addColumn<QString>("error");
        for (const char* error : {"ServiceUnknown", "NoReply", "AccessDenied", "LimitsExceeded", "InvalidSignature"})
            QTest::newRow(error) << QByteArray("panel, alerts, colours") << QByteArray("D-Bus error")
                                 << QString("org.freedesktop.DBus.Error."_L1 + QLatin1StringView(error));
        QTest::newRow("gone") << QByteArray("panel, alerts, colours") << QByteArray("D-Bus owner gone") << QString();
    }

    void servicesMayFailAtAnyCall() {
        QFETCH(QString, error);
        PrivateBus bus;
        FaultyDesktop desktop(bus);
        failInTurn([&](int number) { return useServices(bus, desktop, number, error); });
        QVERIFY(m_lastCount > 4);
    }

private:
    static void stopFailing() {
        FailingDisk::disarm();
        FailingSockets::disarm();
    }

    /// A round tells how many calls it counted; there is one for each of them.
    template <class Round>
    void failInTurn(Round round) {
        QFETCH(QByteArray, subject);
        QFETCH(QByteArray, call);
        for (int number = 1;; ++number) {
            m_lastCount = round(number);
            if (QTest::currentTestFailed())
                QFAIL(qPrintable(u"at call %1"_s.arg(number)));
            if (number > m_lastCount)
                return;
            ++g_rounds[subject][call];
        }
    }

    static void addSocketRows(const char* subject) {
        QTest::addColumn<QByteArray>("subject");
        QTest::addColumn<QByteArray>("call");
        QTest::addColumn<Call>("function");
        QTest::addColumn<int>("error");
        const QByteArray name(subject);
        QTest::newRow("no descriptors left") << name << QByteArray("socket") << Call::socket << EMFILE;
        QTest::newRow("refused") << name << QByteArray("connect") << Call::connect << ECONNREFUSED;
        QTest::newRow("unreachable") << name << QByteArray("connect") << Call::connect << ENETUNREACH;
        QTest::newRow("broken pipe") << name << QByteArray("send") << Call::send << EPIPE;
        QTest::newRow("reset while sending") << name << QByteArray("send") << Call::send << ECONNRESET;
        QTest::newRow("reset") << name << QByteArray("recv") << Call::receive << ECONNRESET;
        QTest::newRow("timed out") << name << QByteArray("recv") << Call::receive << ETIMEDOUT;
    }

    /// Reads and writes on the failing disk, looks at what is there, and then writes again on the mended one.
    int writeFiles(const FailingDisk::Fault& fault) {
        QFETCH(QByteArray, subject);
        const bool isCache = subject != "preferences";
        const QTemporaryDir place;
        const QString home = place.filePath(u"home"_s);
        const QString data = home + u"/data"_s;
        const QString path = isCache ? data + u'/' + cached : home + u"/preferences.json"_s;
        const QByteArray before = isCache ? QByteArray("old data") : QByteArray(R"({"theme": "Light"})");
        TestFiles::put(path, before);
        int calls = 0;
        {
            FailingDisk::arm(QFile::encodeName(home), fault);
            UserDefaults defaults(home + u"/preferences.json"_s, data);
            const std::optional<QByteArray> old = defaults.data(cached);
            [&] { QVERIFY(!old || *old == before); }();
            write(defaults, isCache, u"Dark"_s);
            worker().waitForDone();
            calls = FailingDisk::disarm();
            [&] { QCOMPARE(read(defaults, isCache), u"Dark"_s); }();
            const QByteArray found = TestFiles::contentOf(path);
            [&] { QVERIFY2(found == before || found.contains("Dark"), found); }();
            write(defaults, isCache, u"Auto"_s);
        }
        worker().waitForDone();
        [&] { QCOMPARE(read(UserDefaults(home + u"/preferences.json"_s, data), isCache), u"Auto"_s); }();
        return calls;
    }

    static void write(UserDefaults& defaults, bool isCache, const QString& value) {
        if (isCache)
            defaults.setData(cached, value.toUtf8() + QByteArray(300, ' '));
        else
            defaults.set(u"theme"_s, value);
    }

    static QString read(const UserDefaults& defaults, bool isCache) {
        return isCache ? QString::fromUtf8(defaults.data(cached).value_or(QByteArray())).trimmed()
                       : defaults.string(u"theme"_s).value_or(QString());
    }

    /// A refresh on the failing network, which shows the figures before or those served, and one on the mended.
    static int poll(LiveStore& live, const FailingSockets::Fault& fault) {
        static quint64 wei = 1'500'000'000; // Never the twelve that the sample has.
        const double before = live.shown().gas.baseFee;
        wei += 1'000'000'000;
        live.server.on("/ethereum", StandInAnswer::ok(feeHistoryAt(wei)));
        NetworkClient::dropPooledConnections();
        FailingSockets::arm(Family::internet, fault);
        live.refresh();
        const int calls = FailingSockets::disarm();
        const double served = static_cast<double>(wei) / 1e9;
        const double shown = live.shown().gas.baseFee;
        [&] { QVERIFY2(shown == before || shown == served, QByteArray::number(shown)); }();
        NetworkClient::dropPooledConnections();
        live.refresh();
        [&] { QCOMPARE(live.shown().gas.baseFee, served); }();
        [&] { QVERIFY(live.block() && live.baseCost() != 88); }();
        return calls;
    }

    /// All that uses the bus on a connection whose sockets fail, and then on one that is sound.
    static int useBus(PrivateBus& bus, FaultyDesktop& desktop, const FailingSockets::Fault& fault) {
        desktop.failAt(0, FaultyDesktop::Fault::error);
        FailingSockets::arm(Family::local, fault);
        const QDBusConnection connection = bus.connect();
        {
            BusUsers users(connection);
            [&] { QTRY_VERIFY_WITH_TIMEOUT(users.isWell(desktop) || !connection.isConnected(), limitMs); }();
            NotifierLook look;
            look.title = u"still here"_s;
            users.item.show(look);
            users.center.post({u"title"_s, u"unheard, perhaps"_s});
        }
        bus.close(connection);
        const int calls = FailingSockets::disarm();
        desktop.failAt(0, FaultyDesktop::Fault::error);
        const QDBusConnection sound = bus.connect();
        {
            const BusUsers users(sound);
            [&] { QTRY_VERIFY_WITH_TIMEOUT(users.isWell(desktop), limitMs); }();
        }
        bus.close(sound);
        return calls;
    }

    /// The desktop's services fail at a call, or go and come back.
    static int useServices(PrivateBus& bus, FaultyDesktop& desktop, int number, const QString& error) {
        const bool goes = error.isEmpty();
        desktop.failAt(number, goes ? FaultyDesktop::Fault::gone : FaultyDesktop::Fault::error, error);
        const QDBusConnection connection = bus.connect();
        int calls = 0;
        {
            BusUsers users(connection);
            // Each of the five calls has reached the desktop, or it has gone.
            [&] { QTRY_VERIFY_WITH_TIMEOUT(desktop.calls() >= 5 || (goes && !desktop.isThere()), limitMs); }();
            calls = desktop.calls();
            desktop.failAt(0, FaultyDesktop::Fault::error);
            desktop.comeBack();
            users.center.post({u"title"_s, u"after it"_s});
            [&] { QTRY_VERIFY_WITH_TIMEOUT(desktop.notifications() > 0, limitMs); }();
            [&] { QTRY_VERIFY_WITH_TIMEOUT(!goes || users.isWell(desktop), limitMs); }();
        }
        bus.close(connection);
        return calls;
    }

    int m_lastCount = 0;
};

QTEST_MAIN(FaultMatrixTest)
#include "FaultMatrixTest.moc"
