#include "Coordination/Notifications.h"

#include "Support/StandInNotifications.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>

#include <limits>
#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30000;

} // namespace

class NotificationsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8()); }

    void init() {
        qunsetenv("SNAP");
        m_service = std::make_unique<StandInNotifications>(m_bus);
        QVERIFY(m_service->appear() && m_service->appear(StandInNotifications::portal));
    }

    void cleanup() { m_service.reset(); }

    void theTextsNameTheFeeAndTheThreshold_data() {
        QTest::addColumn<double>("baseFee");
        QTest::addColumn<qint64>("threshold");
        QTest::addColumn<QString>("body");
        const auto row = [](const char* name, double baseFee, qint64 threshold, const QString& body) {
            QTest::newRow(name) << baseFee << threshold << body;
        };
        row("an even fee", 9, 10, u"Base fee dropped to 9.0 gwei (below 10). Good window to transact."_s);
        row("a tie", 8.25, 10, u"Base fee dropped to 8.2 gwei (below 10). Good window to transact."_s);
        row("a small fee", 0.05, 1, u"Base fee dropped to 0.05 gwei (below 1). Good window to transact."_s);
        row("no fee at all", 0, 1, u"Base fee dropped to 0 gwei (below 1). Good window to transact."_s);
        row("high figures", 1234.5, 100000,
            u"Base fee dropped to 1234 gwei (below 100000). Good window to transact."_s);
        row("a threshold below zero", -3.5, -3,
            u"Base fee dropped to -3.5 gwei (below -3). Good window to transact."_s);
        row("the largest threshold", 12.3, std::numeric_limits<qint64>::max(),
            u"Base fee dropped to 12.3 gwei (below 9223372036854775807). Good window to transact."_s);
    }

    void theTextsNameTheFeeAndTheThreshold() {
        QFETCH(double, baseFee);
        QFETCH(qint64, threshold);
        QFETCH(QString, body);
        GasNotifier::fireCheapGas(baseFee, threshold, false);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        const ReceivedNotification received = m_service->notifications()[0];
        QCOMPARE(received.text(3), u"Gas is cheap"_s);
        QCOMPARE(received.text(4), body);
    }

    void theNotificationIsTheProgramsOwn() {
        GasNotifier::fireCheapGas(9, 10, true);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        const ReceivedNotification received = m_service->notifications()[0];
        QCOMPARE(received.text(0), u"velisk"_s);
        QCOMPARE(received.text(2), u"org.velisk.Torvane"_s);
        QCOMPARE(received.dictionary(6), (QVariantMap{{u"desktop-entry"_s, u"org.velisk.Torvane"_s},
                                                      {u"urgency"_s, QVariant::fromValue(uchar(1))},
                                                      {u"sound-name"_s, u"message-new-instant"_s}}));
    }

    void withoutSoundTheServiceIsToldToBeSilent() {
        GasNotifier::fireCheapGas(9, 10, false);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 1, limitMs);
        const QVariantMap hints = m_service->notifications()[0].dictionary(6);
        QCOMPARE(hints.value(u"suppress-sound"_s), QVariant(true));
        QVERIFY(!hints.contains(u"sound-name"_s));
    }

    void theSameFeeTwiceMakesTwoNotifications() {
        GasNotifier::fireCheapGas(9, 10, false);
        GasNotifier::fireCheapGas(9, 10, false);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->notifications().size(), 2, limitMs);
        QCOMPARE(m_service->notifications()[1].arguments[1].toUInt(), 0U);
    }

    void aSandboxNotifiesThroughThePortal() {
        qputenv("SNAP", QFile::encodeName(QCoreApplication::applicationDirPath()));
        GasNotifier::requestAuthorization();
        GasNotifier::fireCheapGas(9, 10, true);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->calls(), QStringList{u"AddNotification"_s}, limitMs);
        const QVariantMap content = m_service->notifications()[0].dictionary(1);
        QCOMPARE(content.value(u"title"_s), u"Gas is cheap"_s);
        QCOMPARE(content.value(u"body"_s), u"Base fee dropped to 9.0 gwei (below 10). Good window to transact."_s);
    }

    void authorizationShowsNothing() {
        GasNotifier::requestAuthorization();
        QTRY_COMPARE_WITH_TIMEOUT(m_service->calls(), QStringList{u"GetServerInformation"_s}, limitMs);
    }

private:
    PrivateBus m_bus;
    std::unique_ptr<StandInNotifications> m_service;
};

QTEST_GUILESS_MAIN(NotificationsTest)
#include "NotificationsTest.moc"
