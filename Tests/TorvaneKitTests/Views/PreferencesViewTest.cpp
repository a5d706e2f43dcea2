#include "Views/PreferencesView.h"

#include "Support/PaintCounter.h"
#include "TorvaneKitTests/Views/PreferencesFixture.h"
#include "Views/FocusRing.h"
#include "Views/SegmentedControl.h"
#include "Views/Stepper.h"
#include "Views/Switch.h"

#include <QScrollArea>
#include <QScrollBar>

using namespace torvane;
using namespace Qt::StringLiterals;
using Section = PreferencesView::Section;

class PreferencesViewTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<PreferencesFixture> m_user;

    AppSettings& settings() const { return *m_user->settings; }

    static QStringList sixtyNetworks() {
        QStringList names;
        for (int i = 0; i < 60; ++i)
            names.append(u"Network %1"_s.arg(i));
        return names;
    }

private Q_SLOTS:
    void init() { m_user = std::make_unique<PreferencesFixture>(); }
    void cleanup() { m_user.reset(); }

    void theContentHasAFixedSize() {
        m_user->open();
        QCOMPARE(m_user->view->size(), QSize(660, 520));
        QCOMPARE(m_user->view->minimumSize(), m_user->view->maximumSize());
        QCOMPARE(m_user->view->findChild<Sidebar*>()->width(), 194);
    }

    void itOpensAtGeneralEachTime() {
        m_user->open(Section::about);
        QCOMPARE(m_user->view->section(), Section::about);
        m_user->view = std::make_unique<PreferencesView>(*m_user->store, settings(), m_user->updater);
        QCOMPARE(m_user->view->section(), Section::general);
        QVERIFY(m_user->texts().contains(u"Startup, units, and how often gas refreshes."_s));
    }

    void everySectionHasItsTitleAndSubtitle_data() {
        QTest::addColumn<Section>("section");
        QTest::addColumn<QStringList>("heading");
        QTest::newRow("general") << Section::general
                                 << QStringList{u"General"_s, u"Startup, units, and how often gas refreshes."_s};
        QTest::newRow("networks") << Section::networks
                                  << QStringList{u"Networks"_s, u"Choose which chains show in the popover."_s};
        QTest::newRow("menu bar") << Section::menuBar
                                  << QStringList{u"Menu Bar"_s, u"What the icon shows at the top of your screen."_s};
        QTest::newRow("alerts") << Section::alerts << QStringList{u"Alerts"_s, u"Get notified when gas is cheap."_s};
        QTest::newRow("appearance") << Section::appearance
                                    << QStringList{u"Appearance"_s, u"Theme and status colours."_s};
        QTest::newRow("about") << Section::about << QStringList{u"About"_s, u"Version and software updates."_s};
    }

    void everySectionHasItsTitleAndSubtitle() {
        QFETCH(const Section, section);
        QFETCH(const QStringList, heading);
        m_user->open(section);
        QCOMPARE(m_user->view->section(), section);
        QCOMPARE(m_user->texts().first(2), heading);
        QCOMPARE(m_user->item(section)->text(), heading[0]);
    }

    void allOfASidebarRowCanBeClicked() {
        m_user->open();
        const SidebarItem* item = m_user->item(Section::alerts);
        QTest::mouseClick(m_user->item(Section::alerts), Qt::LeftButton, {}, QPoint(item->width() - 2, 2));
        QCOMPARE(m_user->view->section(), Section::alerts);
    }

    void theSidebarIsOneStopAndGoesByTheArrowKeys() {
        m_user->open();
        QTest::keyClick(m_user->item(Section::general), Qt::Key_Down);
        QCOMPARE(m_user->view->section(), Section::networks);
        QVERIFY(m_user->item(Section::networks)->hasFocus());
        QTest::keyClick(m_user->item(Section::networks), Qt::Key_End);
        QCOMPARE(m_user->view->section(), Section::about);
        QTest::keyClick(m_user->item(Section::about), Qt::Key_Down);
        QCOMPARE(m_user->view->section(), Section::about);
        QTest::keyClick(m_user->item(Section::about), Qt::Key_Home);
        QCOMPARE(m_user->view->section(), Section::general);
        for (const Section section : allCases<Section>())
            QCOMPARE(bool(m_user->item(section)->focusPolicy() & Qt::TabFocus), section == Section::general);
    }

    void otherFiguresOfTheSameNetworksPaintNothing() {
        m_user->store->snapshot = PreferencesFixture::snapshot();
        for (const Section section : allCases<Section>()) {
            m_user->open(section);
            QTRY_VERIFY_WITH_TIMEOUT(QTest::qWaitForWindowActive(m_user->view.get()), 30'000);
            const PaintCounter paints(*m_user->view);
            Snapshot next = PreferencesFixture::snapshot();
            next.gas.baseFee += 1;
            for (L2Entry& entry : next.l2)
                entry.costGwei = 0.5;
            m_user->store->snapshot = next;
            settings().sound = settings().sound.value();
            PaintCounter::settle();
            QCOMPARE(paints.count(), 0);
        }
    }

    void theFocusedNetworkKeepsTheFocusWhenOthersCome() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"Linea"_s});
        m_user->open(Section::networks);
        m_user->control<Switch>(u"Linea"_s)->setFocus(Qt::TabFocusReason);
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Newcomer"_s, u"Linea"_s});
        QVERIFY(m_user->control<Switch>(u"Linea"_s)->hasFocus());
    }

    void theFocusedNetworkKeepsTheFocusWhileAnotherWindowIsInUse() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"Linea"_s});
        m_user->open(Section::networks);
        m_user->control<Switch>(u"Linea"_s)->setFocus(Qt::TabFocusReason);
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other, 30'000));
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Newcomer"_s, u"Linea"_s});
        m_user->view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_user->view.get(), 30'000));
        QVERIFY(m_user->control<Switch>(u"Linea"_s)->hasFocus());
    }

    void thePanelStaysWhereItIsScrolledToWhenNetworksCome() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf(sixtyNetworks());
        m_user->open(Section::networks);
        const auto* area = m_user->view->findChild<QScrollArea*>();
        area->verticalScrollBar()->setValue(700);
        QCOMPARE(area->verticalScrollBar()->value(), 700);
        m_user->store->snapshot = PreferencesFixture::snapshotOf(sixtyNetworks() << u"Newcomer"_s);
        QCoreApplication::processEvents();
        QCOMPARE(area->verticalScrollBar()->value(), 700);
    }

    void thePanelScrollsToWhatTheKeyboardReaches() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf(sixtyNetworks());
        m_user->open(Section::networks);
        const auto* area = m_user->view->findChild<QScrollArea*>();
        const auto* last = m_user->control<Switch>(u"Network 59"_s);
        for (int presses = 0; presses < 100 && !last->hasFocus(); ++presses)
            QTest::keyClick(m_user->view->focusWidget(), Qt::Key_Tab);
        QVERIFY(last->hasFocus());
        const QRect visible = area->viewport()->rect();
        QVERIFY(visible.contains(QRect(last->mapTo(area->viewport(), QPoint()), last->size())));
    }

    void changesFromElsewhereShowAtOnce() {
        m_user->open(Section::general);
        settings().denom = Denomination::usd;
        settings().launchAtLogin = true;
        settings().liveCadence = LiveGasCadence::sixty;
        QCOMPARE(m_user->control<SegmentedControl>(u"Show gas as"_s)->selected(), 1);
        QVERIFY(m_user->control<Switch>(u"Launch at login"_s)->isChecked());
        QCOMPARE(m_user->control<SegmentedControl>(u"Live gas cadence"_s)->selected(), 3);
        m_user->go(Section::alerts);
        settings().alert = 33;
        QCOMPARE(m_user->control<Stepper>(u"Notify when gas drops below"_s)->value(), 33);
        m_user->go(Section::about);
        m_user->updater.automaticChecks = false;
        QVERIFY(!m_user->control<Switch>(u"Automatically check for updates"_s)->isChecked());
    }

    void theFocusRingComesWithTheKeyboardAndGoesWithTheMouse() {
        m_user->open();
        const auto* ring = m_user->view->findChild<FocusRing*>();
        QVERIFY(ring);
        QVERIFY(!ring->isVisible());
        QTest::keyClick(m_user->view->focusWidget(), Qt::Key_Tab);
        const auto* toggle = m_user->control<Switch>(u"Launch at login"_s);
        QVERIFY(toggle->hasFocus());
        QTRY_VERIFY_WITH_TIMEOUT(ring->isVisible(), 30'000);
        const QRect focused(toggle->mapToGlobal(QPoint()), toggle->size());
        QCOMPARE(QRect(ring->mapToGlobal(QPoint()), ring->size()), focused.adjusted(-3, -3, 3, 3));
        QTest::mouseClick(m_user->item(Section::general), Qt::LeftButton);
        QVERIFY(!ring->isVisible());
    }

    void modifiersAloneBringNoFocusRing() {
        m_user->open();
        const auto* ring = m_user->view->findChild<FocusRing*>();
        const auto isThereAfter = [this, ring](Qt::Key key) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
            QCoreApplication::sendEvent(m_user->view->focusWidget(), &press);
            return ring->isVisible();
        };
        for (const Qt::Key key : {Qt::Key_Alt, Qt::Key_Control, Qt::Key_Shift, Qt::Key_Meta, Qt::Key_AltGr})
            QVERIFY(!isThereAfter(key));
        QVERIFY(isThereAfter(Qt::Key_A));
    }
};

QTEST_MAIN(PreferencesViewTest)
#include "PreferencesViewTest.moc"
