#include "Views/PreferencesPanels.h"

#include "Support/TestConfig.h"
#include "TorvaneKitTests/Views/PreferencesFixture.h"
#include "Views/ChainPicker.h"
#include "Views/L2Metadata.h"
#include "Views/SegmentedControl.h"
#include "Views/Stepper.h"
#include "Views/Switch.h"

#include <QPointer>

#include <limits>

using namespace torvane;
using namespace Qt::StringLiterals;
using Section = PreferencesView::Section;

/// What each control of the panels does.
class PreferencesPanelsTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<PreferencesFixture> m_user;

    AppSettings& settings() const { return *m_user->settings; }

    void click(QWidget* widget) const { QTest::mouseClick(widget, Qt::LeftButton); }

    void clickSwitch(const QString& name) const { click(m_user->control<Switch>(name)); }

    void clickSegment(const QString& control, int index) const {
        click(m_user->control<SegmentedControl>(control)->findChildren<QAbstractButton*>()[index]);
    }

    QAbstractButton* checkButton() const {
        for (auto* button : m_user->view->findChildren<QAbstractButton*>()) {
            if (button->text() == u"Check for Updates…"_s)
                return button;
        }
        qFatal("There is no button to check for updates");
    }

    StepButton* stepButton(const QString& name) const { return m_user->control<StepButton>(name); }

private Q_SLOTS:
    void init() { m_user = std::make_unique<PreferencesFixture>(); }
    void cleanup() { m_user.reset(); }

    void theThresholdStaysWithinItsRange_data() {
        QTest::addColumn<qint64>("stored");
        QTest::addColumn<QString>("button");
        QTest::addColumn<qint64>("expected");
        QTest::newRow("least, minus") << qint64(1) << u"Decrease"_s << qint64(1);
        QTest::newRow("greatest, plus") << qint64(80) << u"Increase"_s << qint64(80);
        QTest::newRow("beyond, minus") << qint64(200) << u"Decrease"_s << qint64(199);
        QTest::newRow("beyond, plus") << qint64(200) << u"Increase"_s << qint64(80);
        QTest::newRow("largest, plus") << std::numeric_limits<qint64>::max() << u"Increase"_s << qint64(80);
        QTest::newRow("smallest, minus") << std::numeric_limits<qint64>::min() << u"Decrease"_s << qint64(1);
        QTest::newRow("between") << qint64(10) << u"Increase"_s << qint64(11);
    }

    void theThresholdStaysWithinItsRange() {
        QFETCH(const qint64, stored);
        QFETCH(const QString, button);
        QFETCH(const qint64, expected);
        settings().alert = stored;
        m_user->open(Section::alerts);
        const auto* stepper = m_user->control<Stepper>(u"Notify when gas drops below"_s);
        QCOMPARE(stepper->text(), QLatin1StringView(std::to_string(stored)) + u" gwei"_s);
        click(stepButton(button));
        QCOMPARE(settings().alert.value(), expected);
        QCOMPARE(stepper->value(), expected);
    }

    void aLayer2DimsTheValueRowAndEthereumBringsItBack() {
        m_user->store->snapshot = PreferencesFixture::snapshot();
        settings().badgeSource = BadgeSource::high;
        m_user->open(Section::menuBar);
        auto* picker = m_user->control<ChainPicker>(u"Chain"_s);
        auto* value = m_user->control<SegmentedControl>(u"Value"_s);
        QVERIFY(value->isEnabled());
        picker->setFocus();
        QTest::keyClick(picker, Qt::Key_End);
        QVERIFY(!settings().badgeChain->isEthereum());
        QVERIFY(!value->isEnabled());
        clickSegment(u"Value"_s, 0);
        QCOMPARE(settings().badgeSource.value(), BadgeSource::high);
        QTest::keyClick(picker, Qt::Key_Home);
        QVERIFY(settings().badgeChain->isEthereum());
        QVERIFY(value->isEnabled());
        QCOMPARE(settings().badgeSource.value(), BadgeSource::high);
        QCOMPARE(value->selected(), 3);
    }

    void withoutColourTheStatusDotIsDimmedAndKept() {
        settings().colorIcon = true;
        m_user->open(Section::menuBar);
        const auto* dot = m_user->control<Switch>(u"Status dot"_s);
        QVERIFY(dot->isEnabled());
        clickSwitch(u"Colour icon"_s);
        QVERIFY(!settings().colorIcon);
        QVERIFY(!dot->isEnabled());
        QVERIFY(dot->isChecked());
        clickSwitch(u"Status dot"_s);
        QVERIFY(settings().menuDot);
        clickSwitch(u"Colour icon"_s);
        QVERIFY(dot->isEnabled());
    }

    void aDisabledRowIsDrawnFainter() {
        settings().colorIcon = true;
        m_user->open(Section::menuBar);
        auto* dot = m_user->control<Switch>(u"Status dot"_s);
        const auto trackColor = [dot] { return dot->grab().toImage().pixelColor(8, 10); };
        QCOMPARE(trackColor(), QColor(Palette::pos));
        clickSwitch(u"Colour icon"_s);
        const QColor ground = Palette::surface;
        const auto mixed = [](int over, int under) { return qRound(0.45 * over + 0.55 * under); };
        const QColor expected(mixed(Palette::pos.red(), ground.red()), mixed(Palette::pos.green(), ground.green()),
                              mixed(Palette::pos.blue(), ground.blue()));
        const QImage window = m_user->view->grab().toImage();
        const QColor faded = window.pixelColor(dot->mapTo(m_user->view.get(), QPoint(8, 10)));
        QVERIFY2(std::abs(faded.red() - expected.red()) <= 2 && std::abs(faded.green() - expected.green()) <= 2,
                 qPrintable(faded.name() + u" instead of "_s + expected.name()));
    }

    void anUnknownNetworkIsDescribedAsLayer2() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"base"_s, u"Newcomer"_s});
        m_user->open(Section::networks);
        const QStringList all = m_user->texts();
        QCOMPARE(all.mid(2, 8), (QStringList{u"Ethereum"_s, u"Mainnet · Layer 1"_s, u"Base"_s, u"Optimistic rollup"_s,
                                             u"base"_s, u"Layer 2"_s, u"Newcomer"_s, u"Layer 2"_s}));
    }

    void nineNetworksAreDescribed() {
        QCOMPARE(L2Metadata::kindByName().size(), 9);
        QCOMPARE(l2Kind(u"Arbitrum"_s), u"Optimistic rollup"_s);
        QCOMPARE(l2Kind(u"Optimism"_s), u"Optimistic rollup"_s);
        QCOMPARE(l2Kind(u"Base"_s), u"Optimistic rollup"_s);
        QCOMPARE(l2Kind(u"Robinhood Chain"_s), u"Arbitrum Orbit chain"_s);
        QCOMPARE(l2Kind(u"Unichain"_s), u"Optimistic rollup"_s);
        for (const QString& name : {u"zkSync Era"_s, u"Scroll"_s, u"Linea"_s, u"Starknet"_s})
            QCOMPARE(l2Kind(name), u"ZK rollup"_s);
        QCOMPARE(l2Kind(QString()), u"Layer 2"_s);
    }

    void aNetworkOffAndOnAgainIsAsBefore() {
        settings().disabledL2 = {u"Linea"_s, u"Nowhere"_s};
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"Linea"_s});
        m_user->open(Section::networks);
        QVERIFY(!m_user->control<Switch>(u"Linea"_s)->isChecked());
        clickSwitch(u"Base"_s);
        QCOMPARE(settings().disabledL2.value(), (QSet<QString>{u"Base"_s, u"Linea"_s, u"Nowhere"_s}));
        QVERIFY(!m_user->control<Switch>(u"Base"_s)->isChecked());
        clickSwitch(u"Base"_s);
        QCOMPARE(settings().disabledL2.value(), (QSet<QString>{u"Linea"_s, u"Nowhere"_s}));
        QVERIFY(m_user->control<Switch>(u"Base"_s)->isChecked());
    }

    void aSwitchThatIsPressedWhileOtherNetworksComeStillFlips() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"Linea"_s});
        m_user->open(Section::networks);
        const QPointer<Switch> pressed = m_user->control<Switch>(u"Linea"_s);
        QTest::mousePress(pressed, Qt::LeftButton);
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"Linea"_s, u"Newcomer"_s});
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Linea"_s, u"Newcomer"_s});
        QVERIFY(pressed);
        QTest::mouseRelease(pressed, Qt::LeftButton);
        QCOMPARE(settings().disabledL2.value(), QSet<QString>{u"Linea"_s});
        QTRY_VERIFY_WITH_TIMEOUT(!pressed, 30'000);
        QCOMPARE(m_user->view->findChildren<Switch*>().size(), 2);
        QVERIFY(!m_user->control<Switch>(u"Linea"_s)->isChecked());
        QVERIFY(m_user->control<Switch>(u"Newcomer"_s)->isChecked());
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s});
        QCOMPARE(m_user->view->findChildren<Switch*>().size(), 1); // At once again.
    }

    void withoutASnapshotTheNetworksAreAwaited() {
        m_user->open(Section::networks);
        QCOMPARE(m_user->texts().mid(2), QStringList{u"Waiting for the first snapshot…"_s});
        QVERIFY(m_user->view->findChildren<Switch*>().isEmpty());
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s});
        QCOMPARE(m_user->view->findChildren<Switch*>().size(), 1);
        QVERIFY(m_user->texts().contains(
            u"Enabled networks appear in the popover's Layer 2 list. Ethereum mainnet is always shown."_s));
    }

    void withoutASnapshotThePickerOffersEthereumAlone() {
        m_user->open(Section::menuBar);
        QCOMPARE(m_user->control<ChainPicker>(u"Chain"_s)->count(), 1);
    }

    void thePickerOffersSwitchedOffNetworksTooAndFollowsTheSnapshot() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"Linea"_s});
        settings().disabledL2 = {u"Base"_s};
        m_user->open(Section::menuBar);
        const auto* picker = m_user->control<ChainPicker>(u"Chain"_s);
        QCOMPARE(picker->count(), 3);
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"Linea"_s, u"Newcomer"_s});
        QCOMPARE(picker->itemText(3), u"Newcomer"_s);
    }

    void aChosenNetworkThatIsGoneStaysChosen() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s});
        settings().badgeChain = BadgeChain::l2(u"Gone"_s);
        m_user->open(Section::menuBar);
        QCOMPARE(m_user->control<ChainPicker>(u"Chain"_s)->currentIndex(), -1);
        QCOMPARE(settings().badgeChain->title(), u"Gone"_s);
        QVERIFY(!m_user->control<SegmentedControl>(u"Value"_s)->isEnabled());
    }

    void theUpdateSwitchTellsTheUpdater() {
        QList<bool> told;
        m_user->updater.onSetAutomatic = [&told](bool automatic) { told.append(automatic); };
        m_user->open(Section::about);
        clickSwitch(u"Automatically check for updates"_s);
        QVERIFY(!m_user->updater.automaticChecks);
        QCOMPARE(told, QList<bool>{false});
    }

    void updatesAreCheckedOnlyWhenTheyCanBe() {
        int checks = 0;
        m_user->updater.onCheck = [&checks] { ++checks; };
        m_user->open(Section::about);
        QAbstractButton* button = checkButton();
        QVERIFY(!button->isEnabled());
        click(button);
        m_user->updater.canCheck = true;
        QVERIFY(button->isEnabled());
        click(button);
        QTRY_COMPARE_WITH_TIMEOUT(checks, 1, 30'000);
        m_user->updater.canCheck = false;
        QVERIFY(!button->isEnabled());
    }

    void aBuildWithoutAKeySaysWhyNothingCanBeChecked() {
        const auto said = [this](const QString& key) {
            TestConfig::setUpdatePublicKey(key);
            m_user->open(Section::about);
            const QAbstractButton* button = checkButton();
            return QStringList{button->toolTip(), button->accessibleDescription()};
        };
        const QString why = u"This build takes no updates: it has no key to verify them with."_s;
        QCOMPARE(said({}), (QStringList{why, why}));
        QCOMPARE(said(u"c29tZSBrZXk="_s), (QStringList{QString(), QString()}));
        TestConfig::setUpdatePublicKey({});
    }

    void spaceAndReturnCheckForUpdates() {
        int checks = 0;
        m_user->updater.onCheck = [&checks] { ++checks; };
        m_user->updater.canCheck = true;
        m_user->open(Section::about);
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
            QTest::keyClick(checkButton(), key);
        QTRY_COMPARE_WITH_TIMEOUT(checks, 3, 30'000);
    }

    void spaceFlipsASwitch() {
        m_user->open();
        auto* toggle = m_user->control<Switch>(u"Launch at login"_s);
        QTest::keyClick(toggle, Qt::Key_Space);
        QVERIFY(settings().launchAtLogin);
        QTest::keyClick(toggle, Qt::Key_Space);
        QVERIFY(!settings().launchAtLogin);
    }
};

QTEST_MAIN(PreferencesPanelsTest)
#include "PreferencesPanelsTest.moc"
