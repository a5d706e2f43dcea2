#include "Platform/UserNotificationCenter.h"

#include "Support/StandInNotifications.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30000;

const UserNotification example{u"News & more"_s, u"a < b & c > d"_s, false};

} // namespace

class UserNotificationCenterTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        qunsetenv("SNAP");
        m_bus = std::make_unique<PrivateBus>();
        m_service = std::make_unique<StandInNotifications>(*m_bus);
        m_connection = m_bus->connect();
        QVERIFY(m_connection.isConnected());
    }

    void cleanup() {
        m_service.reset();
        m_bus.reset();
    }

    void aNotificationArrivesAsItWasPosted() {
        QVERIFY(m_service->appear());
        center().post(example);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        const ReceivedNotification received = m_service->notifications()[0];
        QCOMPARE(received.signature, u"susssasa{sv}i"_s);
        QCOMPARE(received.text(0), u"example"_s);
        QCOMPARE(received.arguments[1].toUInt(), 0U);
        QCOMPARE(received.text(2), u"org.example.Program"_s);
        QCOMPARE(received.text(3), u"News & more"_s);
        QCOMPARE(received.text(4), u"a < b & c > d"_s);
        QCOMPARE(received.arguments[5].toStringList(), QStringList());
        QCOMPARE(received.arguments[7].toInt(), -1);
    }

    void theHintsSayWhetherItMayBeHeard_data() {
        QTest::addColumn<bool>("sound");
        QTest::addColumn<QVariantMap>("expected");
        const QVariantMap always{{u"desktop-entry"_s, u"org.example.Program"_s},
                                 {u"urgency"_s, QVariant::fromValue(uchar(1))}};
        QVariantMap hints = always;
        hints.insert(u"sound-name"_s, u"message-new-instant"_s);
        QTest::newRow("with sound") << true << hints;
        hints = always;
        hints.insert(u"suppress-sound"_s, true);
        QTest::newRow("without") << false << hints;
    }

    void theHintsSayWhetherItMayBeHeard() {
        QFETCH(bool, sound);
        QFETCH(QVariantMap, expected);
        QVERIFY(m_service->appear());
        UserNotification notification = example;
        notification.sound = sound;
        center().post(notification);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        const QVariantMap hints = m_service->notifications()[0].dictionary(6);
        QCOMPARE(hints, expected);
        QCOMPARE(hints[u"urgency"_s].metaType(), QMetaType::fromType<uchar>());
    }

    void theBodyIsEscapedWhereItCountsAsMarkup_data() {
        QTest::addColumn<QVariantList>("capabilities");
        QTest::addColumn<QString>("expected");
        const QString plain = example.body;
        const QString escaped = u"a &lt; b &amp; c &gt; d"_s;
        const auto texts = [](const QStringList& list) { return QVariantList{list}; };
        QTest::newRow("markup") << texts({u"actions"_s, u"body"_s, u"body-markup"_s}) << escaped;
        QTest::newRow("no markup") << texts({u"body"_s, u"body-markups"_s, u"Body-Markup"_s}) << plain;
        QTest::newRow("nothing") << texts({}) << plain;
        QTest::newRow("no list") << QVariantList{} << plain;
        QTest::newRow("a text") << QVariantList{u"body-markup"_s} << plain;
        QTest::newRow("a number") << QVariantList{1} << plain;
        QTest::newRow("bytes") << QVariantList{QByteArray("body-markup")} << plain;
        QTest::newRow("many more") << texts(QStringList(20000, u"x"_s) << u"body-markup"_s) << escaped;
        QTest::newRow("something after it") << QVariantList{QStringList{u"body-markup"_s}, 1} << escaped;
    }

    void theBodyIsEscapedWhereItCountsAsMarkup() {
        QFETCH(QVariantList, capabilities);
        QFETCH(QString, expected);
        m_service->capabilities = capabilities;
        QVERIFY(m_service->appear());
        center().post(example);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        QCOMPARE(m_service->notifications()[0].text(3), example.title);
        QCOMPARE(m_service->notifications()[0].text(4), expected);
    }

    void anotherServiceIsAskedForItsOwnCapabilities() {
        QVERIFY(m_service->appear());
        const UserNotificationCenter posting = center();
        posting.post(example);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        QVERIFY(m_service->disappear());
        StandInNotifications other(*m_bus);
        other.capabilities = {QStringList{u"body-markup"_s}};
        QVERIFY(other.appear());
        posting.post(example);
        QTRY_COMPARE_WITH_TIMEOUT(other.notifications().size(), 1, limitMs);
        QCOMPARE(other.notifications()[0].text(4), u"a &lt; b &amp; c &gt; d"_s);
    }

    void notificationsKeepTheirOrderAndReplaceNothing() {
        QVERIFY(m_service->appear());
        for (const QString& title : {u"1"_s, u"2"_s, u"3"_s})
            center().post({title, u"the same"_s});
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 3, limitMs);
        QStringList titles;
        for (const ReceivedNotification& each : m_service->notifications()) {
            titles.append(each.text(3));
            QCOMPARE(each.arguments[1].toUInt(), 0U);
        }
        QCOMPARE(titles, (QStringList{u"1"_s, u"2"_s, u"3"_s}));
    }

    void authorizationWakesTheServiceOnce() {
        QVERIFY(m_service->appear());
        center().requestAuthorization();
        QTRY_COMPARE_WITH_TIMEOUT(m_service->calls(), QStringList{u"GetServerInformation"_s}, limitMs);
    }

    void aServiceThatRefusesIsAskedAgainNextTime() {
        m_service->refuses = true;
        QVERIFY(m_service->appear());
        center().requestAuthorization();
        center().post(example);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        m_service->refuses = false;
        center().post(example);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 2, limitMs);
    }

    void withoutAServiceNothingIsKeptForLater() {
        center().requestAuthorization();
        center().post(example);
        settle();
        QVERIFY(m_service->appear());
        center().post({u"later"_s, u"body"_s});
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        QCOMPARE(m_service->notifications()[0].text(3), u"later"_s);
    }

    void whatASilentServiceHasLeftGoesToItsSuccessor() {
        m_service->answers = false;
        QVERIFY(m_service->appear());
        center().post(example);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->calls(), QStringList{u"GetCapabilities"_s}, limitMs);
        QVERIFY(m_service->disappear());
        StandInNotifications successor(*m_bus);
        QVERIFY(successor.appear());
        m_service.reset(); // The bus says now that the answer will not come.
        QTRY_COMPARE_WITH_TIMEOUT(successor.notifications().size(), 1, limitMs);
        QCOMPARE(successor.notifications()[0].text(4), example.body);
    }

    void withoutABusNothingHappens() {
        const UserNotificationCenter nowhere(QDBusConnection(u"no such connection"_s), sender(),
                                             NotificationRoute::desktop);
        nowhere.requestAuthorization();
        nowhere.post(example);
        const UserNotificationCenter sandboxed(QDBusConnection(u"no such connection"_s), sender(),
                                               NotificationRoute::portal);
        sandboxed.requestAuthorization();
        sandboxed.post(example);
        QVERIFY(m_service->appear());
        settle();
        QVERIFY(m_service->calls().isEmpty());
        QVERIFY(!somethingIsPending());
    }

    void aBusThatGoesAwayTakesNothingWithIt() {
        m_service->answers = false;
        QVERIFY(m_service->appear());
        center().post(example);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->calls(), QStringList{u"GetCapabilities"_s}, limitMs);
        m_service.reset();
        m_bus.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!m_connection.isConnected(), limitMs);
        center().post(example);
        QTRY_VERIFY_WITH_TIMEOUT(!somethingIsPending(), limitMs);
    }

    void thePortalGetsPlainTextsUnderAFreshName() {
        QVERIFY(m_service->appear() && m_service->appear(StandInNotifications::portal));
        const UserNotificationCenter sandboxed(m_connection, sender(), NotificationRoute::portal);
        sandboxed.requestAuthorization();
        sandboxed.post(example);
        sandboxed.post(example);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->calls(), (QStringList{u"AddNotification"_s, u"AddNotification"_s}),
                                  limitMs);
        const QList<ReceivedNotification> received = m_service->notifications();
        QVERIFY(received[0].text(0) != received[1].text(0));
        for (const ReceivedNotification& each : received) {
            QCOMPARE(each.signature, u"sa{sv}"_s);
            QCOMPARE(QUuid(each.text(0)).toString(QUuid::WithoutBraces), each.text(0));
            QCOMPARE(QUuid(each.text(0)).version(), QUuid::Random);
            QCOMPARE(each.dictionary(1), (QVariantMap{{u"title"_s, u"News & more"_s},
                                                      {u"body"_s, u"a < b & c > d"_s},
                                                      {u"priority"_s, u"normal"_s}}));
        }
    }

    void onlyASandboxTakesThePortal() {
        QCOMPARE(notificationRoute(), NotificationRoute::desktop);
        qputenv("SNAP", QFile::encodeName(QCoreApplication::applicationDirPath()));
        QCOMPARE(notificationRoute(), NotificationRoute::portal);
        qputenv("SNAP", "");
        QCOMPARE(notificationRoute(), NotificationRoute::desktop);
    }

    void whatASandboxedTerminalStartsTakesTheDesktop() {
        const QTemporaryDir terminals;
        qputenv("SNAP", QFile::encodeName(terminals.path()));
        QCOMPARE(notificationRoute(), NotificationRoute::desktop);
    }

private:
    static NotificationSender sender() { return {u"example"_s, u"org.example.Program"_s}; }

    /// A value of its own each time: nothing may depend on its life.
    UserNotificationCenter center() const { return {m_connection, sender(), NotificationRoute::desktop}; }

    static bool somethingIsPending() {
        return QCoreApplication::instance()->findChild<QDBusPendingCallWatcher*>() != nullptr;
    }

    /// Returns when the bus has dealt with all that was asked of it before.
    void settle() {
        const QDBusMessage ping = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s,
                                                                 u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
        for (int trip = 0; trip < 3; ++trip) // One for what asks, one for what it asks then, one for its answer.
            QCOMPARE(errorName(answer(m_connection, ping)), QString());
    }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<StandInNotifications> m_service;
    QDBusConnection m_connection{QString()};
};

QTEST_GUILESS_MAIN(UserNotificationCenterTest)
#include "UserNotificationCenterTest.moc"
