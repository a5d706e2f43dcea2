#include "Badge/BadgeLook.h"
#include "Design/Theme.h"
#include "Model/Format.h"
#include "Support/AccessibleTree.h"
#include "Support/Clock.h"
#include "Support/StandInNotifications.h"
#include "TimerSettings.h"
#include "TorvaneKitTests/Views/PreferencesFixture.h"
#include "Views/ChainPicker.h"
#include "Views/PopoverView.h"
#include "Views/SegmentedControl.h"
#include "Views/Stepper.h"
#include "Views/Switch.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QTimer>

using namespace torvane;
using namespace Qt::StringLiterals;
using Section = PreferencesView::Section;

namespace {

constexpr int limitMs = 60'000;

/// Nobody moves the figures, so that the settings alone do.
QDateTime standingTime() {
    return QDateTime::fromSecsSinceEpoch(1'790'000'060, Qt::UTC);
}

} // namespace

/// Each of the thirteen settings: changed with its control, seen where it has its effect, found again after a restart.
class EverySettingTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<StandInNotifications> m_notifications;
    std::unique_ptr<PreferencesFixture> m_user;

    AppSettings& settings() const { return *m_user->settings; }

    void clickSwitch(const QString& name) const { QTest::mouseClick(m_user->control<Switch>(name), Qt::LeftButton); }

    void clickSegment(const QString& control, const QString& label) const {
        for (auto* segment : m_user->control<SegmentedControl>(control)->findChildren<QAbstractButton*>()) {
            if (segment->text() == label)
                QTest::mouseClick(segment, Qt::LeftButton);
        }
    }

    /// What the preferences file says.
    QJsonValue stored(const QString& key) const {
        worker().waitForDone();
        const QByteArray bytes = TestFiles::contentOf(m_user->preferencesPath());
        return QJsonDocument::fromJson(bytes).object().value(key);
    }

    BadgeLook badge() const {
        return badgeLook(m_user->store->snapshot, m_user->store->lastUpdated, settings(), Clock::now());
    }

    /// All that the popover says.
    QString popover() const {
        PopoverView view(*m_user->store, settings());
        view.show();
        return QTest::qWaitForWindowExposed(&view, limitMs) ? AccessibleTree::of(view) : QString();
    }

    int ethereumInterval() const { return m_user->store->findChildren<QTimer*>()[1]->interval(); }

    /// The notifications since the last start, once there are this many.
    QList<ReceivedNotification> notifications(qsizetype count) const {
        const auto haveCome = [&] { return m_notifications->notifications().size() >= count; };
        if (!QTest::qWaitFor(haveCome, limitMs))
            qWarning("Not all notifications come");
        return m_notifications->notifications();
    }

private Q_SLOTS:
    void initTestCase() {
        m_bus = std::make_unique<PrivateBus>();
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus->address().toUtf8());
        QVERIFY(QDBusConnection::sessionBus().isConnected());
    }

    void init() {
        Clock::setSource(standingTime);
        m_notifications = std::make_unique<StandInNotifications>(*m_bus);
        QVERIFY(m_notifications->appear());
        m_user = std::make_unique<PreferencesFixture>();
        m_user->defaults->setData(u"cachedSnapshot"_s, JSON::encode(PreferencesFixture::snapshot()));
        m_user->start();
        QVERIFY(m_user->store->snapshot.value());
    }

    void cleanup() {
        m_user.reset();
        m_notifications.reset();
        Clock::setSource(nullptr);
    }

    void cleanupTestCase() {
        QDBusConnection::disconnectFromBus(QDBusConnection::sessionBus().name());
        m_bus.reset();
    }

    void launchAtLogin() {
        m_user->open(Section::general);
        clickSwitch(u"Launch at login"_s);
        QCOMPARE(stored(u"launchAtLogin"_s), QJsonValue(true));
        const QString entry = m_user->home.filePath(u"autostart/org.velisk.Torvane.desktop"_s);
        QVERIFY(QFile::exists(entry));
        m_user->start();
        QVERIFY(settings().launchAtLogin);
        m_user->open(Section::general);
        clickSwitch(u"Launch at login"_s);
        QCOMPARE(stored(u"launchAtLogin"_s), QJsonValue(false));
        QVERIFY(!QFile::exists(entry));
    }

    void denom() {
        QVERIFY(badge().picture.figure.front() != u'$');
        m_user->open(Section::general);
        clickSegment(u"Show gas as"_s, u"USD"_s);
        QCOMPARE(stored(u"denom"_s), QJsonValue(u"USD"_s));
        const QString figure = badge().picture.figure;
        QVERIFY2(figure.startsWith(u'$'), qPrintable(figure));
        const QString price = Format::usd(m_user->store->snapshot.value()->price.eth);
        QVERIFY2(popover().contains(price), qPrintable(popover()));
        m_user->start();
        QCOMPARE(badge().picture.figure, figure);
    }

    void liveCadence() {
        m_user->store->rescheduleTimers();
        rebuildTimersOnChange(settings(), *m_user->store);
        QCOMPARE(ethereumInterval(), 12'000);
        m_user->open(Section::general);
        clickSegment(u"Live gas cadence"_s, u"30s"_s);
        QCoreApplication::processEvents();
        QCOMPARE(ethereumInterval(), 30'000);
        QCOMPARE(stored(u"liveGasCadence"_s), QJsonValue(u"30s"_s));
        m_user->start();
        m_user->store->rescheduleTimers();
        QCOMPARE(ethereumInterval(), 30'000);
    }

    void disabledL2() {
        QVERIFY(popover().contains(u"Linea"_s));
        m_user->open(Section::networks);
        clickSwitch(u"Linea"_s);
        QCOMPARE(stored(u"disabledL2"_s), QJsonValue(QJsonArray{u"Linea"_s}));
        QVERIFY(!popover().contains(u"Linea"_s));
        m_user->start();
        QVERIFY(!popover().contains(u"Linea"_s));
    }

    void badgeChain() {
        m_user->open(Section::menuBar);
        QTest::keyClick(m_user->control<ChainPicker>(u"Chain"_s), Qt::Key_B);
        QCOMPARE(stored(u"badgeChain"_s), QJsonValue(u"Base"_s));
        QCOMPARE(badge().picture.icon.chain, u"Base"_s);
        QVERIFY(popover().contains(u"Layer 2 · menu-bar chain"_s, Qt::CaseInsensitive));
        m_user->start();
        QCOMPARE(badge().picture.icon.chain, u"Base"_s);
        QCOMPARE(m_user->store->selectedL2()->name, u"Base"_s);
    }

    void menuNumber() {
        QVERIFY(!badge().picture.figure.isEmpty());
        m_user->open(Section::menuBar);
        clickSwitch(u"Show badge value"_s);
        QCOMPARE(stored(u"menuNumber"_s), QJsonValue(false));
        QVERIFY(badge().picture.figure.isEmpty());
        m_user->start();
        QVERIFY(badge().picture.figure.isEmpty());
    }

    void badgeSource() {
        const double high = m_user->store->snapshot.value()->gas.high;
        QVERIFY(badge().picture.figure != Format::gwei(high));
        m_user->open(Section::menuBar);
        clickSegment(u"Value"_s, u"High"_s);
        QCOMPARE(stored(u"badgeSource"_s), QJsonValue(u"High"_s));
        QCOMPARE(badge().picture.figure, Format::gwei(high));
        m_user->start();
        QCOMPARE(badge().picture.figure, Format::gwei(high));
    }

    void colorIconAndMenuDot() {
        QVERIFY(!badge().picture.icon.colorIcon);
        m_user->open(Section::menuBar);
        clickSwitch(u"Colour icon"_s);
        QCOMPARE(stored(u"colorIcon"_s), QJsonValue(true));
        QVERIFY(badge().picture.icon.colorIcon);
        QVERIFY(badge().picture.icon.dotColor);
        clickSwitch(u"Status dot"_s);
        QCOMPARE(stored(u"menuDot"_s), QJsonValue(false));
        QVERIFY(!badge().picture.icon.dotColor);
        m_user->start();
        QVERIFY(badge().picture.icon.colorIcon);
        QVERIFY(!badge().picture.icon.dotColor);
    }

    void alertEnabledAndAlertAndSound() {
        const auto above = static_cast<qint64>(m_user->store->snapshot.value()->gas.baseFee) + 1;
        settings().alert = above - 1;
        m_user->open(Section::alerts);
        clickSwitch(u"Enable notifications"_s);
        QTest::keyClick(m_user->control<Stepper>(u"Notify when gas drops below"_s), Qt::Key_Up);
        QCOMPARE(stored(u"alertEnabled"_s), QJsonValue(true));
        QCOMPARE(stored(u"alert"_s), QJsonValue(above));
        m_user->start();
        m_user->store->start();
        const QList<ReceivedNotification> silent = notifications(1);
        QCOMPARE(silent.size(), 1);
        QVERIFY(silent[0].text(4).contains(u"(below %1)"_s.arg(above)));
        QVERIFY(silent[0].dictionary(6).contains(u"suppress-sound"_s));
        m_user->open(Section::alerts);
        clickSwitch(u"Play sound with notification"_s);
        QCOMPARE(stored(u"sound"_s), QJsonValue(true));
        m_user->start();
        m_user->store->start();
        const QList<ReceivedNotification> audible = notifications(2);
        QCOMPARE(audible.size(), 2);
        QVERIFY(audible[1].dictionary(6).contains(u"sound-name"_s));
    }

    void theme() {
        ApplicationPalette palette;
        const ColorScheme desktop(QDBusConnection(u"no such bus"_s), palette);
        {
            const Theme applied(settings(), desktop, palette);
            PopoverView popoverView(*m_user->store, settings());
            const QImage lightPopover = popoverView.grab().toImage();
            m_user->open(Section::appearance);
            clickSegment(u"Theme"_s, u"Dark"_s);
            QCOMPARE(stored(u"theme"_s), QJsonValue(u"Dark"_s));
            QTRY_COMPARE_WITH_TIMEOUT(currentAppearance(), Appearance::dark, limitMs);
            QCOMPARE(m_user->view->grab().toImage().pixelColor(2, 500), Palette::surface2.in(Appearance::dark));
            QVERIFY(popoverView.grab().toImage() != lightPopover);
            clickSegment(u"Theme"_s, u"Light"_s);
            QTRY_COMPARE_WITH_TIMEOUT(currentAppearance(), Appearance::light, limitMs);
            clickSegment(u"Theme"_s, u"Dark"_s);
        }
        m_user->start();
        setCurrentAppearance(Appearance::light);
        const Theme applied(settings(), desktop, palette);
        QCOMPARE(currentAppearance(), Appearance::dark);
    }

    void thirteenSettingsAreStored() {
        for (Setting<bool>* setting : {&settings().menuNumber, &settings().menuDot, &settings().colorIcon,
                                       &settings().launchAtLogin, &settings().alertEnabled, &settings().sound})
            *setting = true;
        settings().denom = Denomination::usd;
        settings().liveCadence = LiveGasCadence::fifteen;
        settings().theme = AppTheme::dark;
        settings().badgeSource = BadgeSource::high;
        settings().badgeChain = BadgeChain::l2(u"Base"_s);
        settings().alert = 5;
        settings().disabledL2 = {};
        worker().waitForDone();
        const QByteArray bytes = TestFiles::contentOf(m_user->preferencesPath());
        QCOMPARE(QJsonDocument::fromJson(bytes).object().size(), 13);
    }
};

QTEST_MAIN(EverySettingTest)
#include "EverySettingTest.moc"
