#include "Badge/BadgeFeed.h"

#include "Badge/BadgeHost.h"
#include "Support/Clock.h"
#include "Support/DesktopStyle.h"
#include "Support/SimulatedMarket.h"
#include "Support/StandInPanel.h"
#include "Support/TemporaryHome.h"

#include <QApplication>
#include <QLocale>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <limits>
#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30000;
const QDateTime start = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);

QDateTime currentTime = start;

QDateTime simulatedTime() {
    return currentTime;
}

PanelProcess squares(uint) {
    return {u"lxqt-panel"_s, {}};
}

} // namespace

class BadgeFeedTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        currentTime = start;
        QLocale::setDefault(QLocale::c());
        Clock::setSource(&simulatedTime);
        m_home = std::make_unique<TemporaryHome>();
        m_defaults =
            std::make_unique<UserDefaults>(m_home->filePath(u"preferences.json"_s), m_home->filePath(u"cache"_s));
        m_settings = std::make_unique<AppSettings>(*m_defaults);
        m_store = std::make_unique<SnapshotStore>(*m_settings, *m_defaults);
        m_feed = std::make_unique<BadgeFeed>(*m_store, *m_settings);
    }

    void cleanup() {
        m_feed.reset();
        m_store.reset();
        m_settings.reset();
        m_defaults.reset();
        setCurrentAppearance(Appearance::light);
        Clock::setSource(nullptr);
    }

    void theChangesOfATurnAreAnnouncedOnceAndWhenTheyAreInEffect() {
        QStringList figures;
        connect(m_feed.get(), &BadgeFeed::lookChanged, this,
                [&figures](const BadgeLook& look) { figures.append(look.picture.figure); });
        publish();
        m_settings->badgeSource = BadgeSource::baseFee;
        m_settings->denom = Denomination::usd;
        QVERIFY(figures.isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(figures, QStringList{m_feed->look().picture.figure});
        QVERIFY(figures[0].startsWith(u'$'));
    }

    void dataThatNobodyRenewsComeToSayHowOldTheyAre() {
        publish();
        QCoreApplication::processEvents();
        QVERIFY(!m_feed->look().detail.contains("as of"_L1));
        QCOMPARE(ageTimer()->interval(), 600'001);
        QVERIFY(ageTimer()->isSingleShot());
        QSignalSpy looks(m_feed.get(), &BadgeFeed::lookChanged);
        currentTime = start.addSecs(601);
        fireAge();
        QCOMPARE(looks.size(), 1);
        QVERIFY(qvariant_cast<BadgeLook>(looks[0][0]).detail.contains("as of"_L1));
    }

    void whenTheDayEndsOldDataComeToSayOfWhichTheyAre() {
        const QDateTime midnight = start.toLocalTime().date().addDays(1).startOfDay();
        publish();
        QCoreApplication::processEvents();
        currentTime = start.addSecs(700);
        fireAge();
        QCOMPARE(qint64(ageTimer()->interval()), currentTime.msecsTo(midnight));
        QSignalSpy looks(m_feed.get(), &BadgeFeed::lookChanged);
        currentTime = midnight.addMSecs(-1).toUTC();
        fireAge(); // Early, as coarse timers may.
        QVERIFY(!m_feed->look().detail.contains("as of 2026-"_L1));
        QCOMPARE(ageTimer()->interval(), 1);
        currentTime = midnight.toUTC();
        fireAge();
        QCOMPARE(looks.size(), 2);
        QVERIFY(qvariant_cast<BadgeLook>(looks[1][0]).detail.contains("as of 2026-"_L1));
        QVERIFY(!ageTimer()->isActive()); // There is nothing more to tell.
    }

    void aTimeThatPassedUnnoticedIsNoticedWhenAskedAgain() {
        publish();
        QCoreApplication::processEvents();
        QSignalSpy looks(m_feed.get(), &BadgeFeed::lookChanged);
        currentTime = start.addDays(2);
        m_feed->lookAgain();
        m_feed->lookAgain();
        QCoreApplication::processEvents();
        QCOMPARE(looks.size(), 1);
        QVERIFY(qvariant_cast<BadgeLook>(looks[0][0]).detail.contains("as of 2026-"_L1));
    }

    void aTimerThatFiresEarlyIsSetAnew() {
        publish();
        QCoreApplication::processEvents();
        currentTime = start.addSecs(590);
        fireAge();
        QVERIFY(!m_feed->look().detail.contains("as of"_L1));
        QVERIFY(ageTimer()->isActive());
        QVERIFY(ageTimer()->interval() <= 10'001);
    }

    void theGreyDotFollowsTheDesktopsAppearance() {
        QApplication::setStyle(new DesktopStyle(Qt::white));
        ApplicationPalette palette;
        const ColorScheme desktop(QDBusConnection(u"none"_s), palette);
        const Theme theme(*m_settings, desktop, palette);
        m_feed->follow(theme);
        publish();
        m_settings->badgeChain = BadgeChain::l2(u"Nowhere"_s); // Unavailable.
        QCoreApplication::processEvents();
        QCOMPARE(m_feed->look().picture.icon.dotColor, Palette::ink3.in(Appearance::light));
        QSignalSpy looks(m_feed.get(), &BadgeFeed::lookChanged);
        QApplication::setStyle(new DesktopStyle(Qt::black));
        QTRY_COMPARE_WITH_TIMEOUT(looks.size(), 1, limitMs);
        QCOMPARE(qvariant_cast<BadgeLook>(looks[0][0]).picture.icon.dotColor, Palette::ink3.in(Appearance::dark));
    }

    void newerDataAreAwaitedAnew() {
        publish();
        currentTime = start.addSecs(300);
        publish();
        QCoreApplication::processEvents();
        QVERIFY(ageTimer()->interval() > 599'000);
        QCOMPARE(m_feed->findChildren<QTimer*>().size(), 1);
    }

    void dataFromTheFarFutureAreAwaitedAsLongAsATimerHolds() {
        for (const qint64 years : {1, 1000, 7000}) {
            m_store->lastUpdated = start.addDays(years * 365);
            QCoreApplication::processEvents();
            QVERIFY(ageTimer()->isActive());
            QCOMPARE(ageTimer()->interval(), std::numeric_limits<int>::max());
        }
    }

    void withoutDataNothingIsAwaited() {
        m_settings->denom = Denomination::usd;
        QCoreApplication::processEvents();
        QVERIFY(!ageTimer()->isActive());
    }

    void aHundredUnchangedPublishesSendNothing() {
        PrivateBus bus;
        StandInPanel panel(bus);
        QVERIFY(panel.appear());
        const QDBusConnection connection = bus.connect();
        BadgeHost host(connection, &squares);
        connect(m_feed.get(), &BadgeFeed::lookChanged, &host, &BadgeHost::show);
        publish();
        QTRY_COMPARE_WITH_TIMEOUT(panel.services().size(), 1, limitMs);
        QTRY_VERIFY_WITH_TIMEOUT(panel.property(u"Title"_s).toString().contains("gwei"_L1), limitMs);

        QProcess monitor;
        monitor.start(u"dbus-monitor"_s, {u"--address"_s, bus.address(), u"--profile"_s});
        QByteArray seen;
        // Asks the badge for something, and looks whether the monitor saw a message of this kind from it since.
        const auto sees = [&](const QByteArray& kind) {
            panel.property(u"Id"_s);
            seen += monitor.readAllStandardOutput();
            return sentBy(connection, seen, kind) > 0;
        };
        QTRY_VERIFY_WITH_TIMEOUT(sees("mr"), limitMs); // Now it listens.
        seen.clear();
        for (int i = 0; i < 100; ++i) {
            currentTime = currentTime.addSecs(12);
            publish();
            QCoreApplication::processEvents();
        }
        QTRY_VERIFY_WITH_TIMEOUT(sees("mr"), limitMs);
        QCOMPARE(sentBy(connection, seen, {}), sentBy(connection, seen, "mr")); // Replies to us, and nothing else.
        m_store->snapshot = SimulatedMarket::at(start.addSecs(7200));
        QTRY_VERIFY_WITH_TIMEOUT(sees("sig"), limitMs); // A change, on the other hand, is told.
        monitor.kill();
        monitor.waitForFinished(-1);
    }

private:
    void publish() {
        m_store->snapshot = SimulatedMarket::at(start);
        m_store->lastUpdated = currentTime;
    }

    /// The lines of a monitor, of this kind unless it is empty, that name the connection as the sender.
    static qsizetype sentBy(const QDBusConnection& connection, const QByteArray& lines, const QByteArray& kind) {
        qsizetype count = 0;
        for (const QByteArray& line : lines.split('\n')) {
            const QList<QByteArray> parts = line.split('\t');
            count += parts.value(3) == connection.baseService().toLatin1() && (kind.isEmpty() || parts[0] == kind);
        }
        return count;
    }

    QTimer* ageTimer() const { return m_feed->findChild<QTimer*>(); }

    void fireAge() { QVERIFY(QMetaObject::invokeMethod(ageTimer(), "timeout")); }

    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppSettings> m_settings;
    std::unique_ptr<SnapshotStore> m_store;
    std::unique_ptr<BadgeFeed> m_feed;
};

QTEST_MAIN(BadgeFeedTest)
#include "BadgeFeedTest.moc"
