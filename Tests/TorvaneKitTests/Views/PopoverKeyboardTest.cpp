#include "Support/PaintCounter.h"
#include "Support/PopoverScene.h"
#include "Views/ActionRow.h"
#include "Views/L2Row.h"
#include "Views/PopoverView.h"

#include <QClipboard>
#include <QScrollArea>
#include <QSignalSpy>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

QString focused() {
    const QWidget* widget = QApplication::focusWidget();
    return widget ? widget->accessibleName().section(u',', 0, 0) : u"none"_s;
}

const QStringList inOrder{u"Arbitrum"_s, u"Optimism"_s,    u"Base"_s,         u"zkSync Era"_s, u"Linea"_s,
                          u"Starknet"_s, u"Refresh Now"_s, u"Preferences…"_s, u"Quit velisk"_s};

} // namespace

class PopoverKeyboardTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_scene = std::make_unique<PopoverScene>();
        open();
    }

    void cleanup() {
        m_view.reset();
        m_scene.reset();
    }

    void tabReachesEverythingFromTopToBottomAndRoundAgain() {
        for (int round = 0; round < 2; ++round)
            QCOMPARE(steps(Qt::Key_Tab, Qt::NoModifier), inOrder);
    }

    void shiftTabGoesTheOtherWay() {
        QStringList backwards = inOrder;
        std::reverse(backwards.begin(), backwards.end());
        QCOMPARE(steps(Qt::Key_Tab, Qt::ShiftModifier), backwards);
    }

    void theDownArrowGoesDownAndTheUpArrowUp() {
        QCOMPARE(steps(Qt::Key_Down, Qt::NoModifier), inOrder);
        press(Qt::Key_Up);
        QCOMPARE(focused(), u"Preferences…"_s);
        press(Qt::Key_Up);
        QCOMPARE(focused(), u"Refresh Now"_s);
    }

    void homeAndEndGoToTheFirstAndTheLast() {
        press(Qt::Key_End);
        QCOMPARE(focused(), u"Quit velisk"_s);
        press(Qt::Key_Home);
        QCOMPARE(focused(), u"Arbitrum"_s);
    }

    void rowsThatCameLaterHaveTheirPlaceInTheOrder() {
        m_scene->change([](Snapshot& it) { it.l2 = SampleSnapshot::networks(2); });
        PaintCounter::settle();
        m_scene->change([](Snapshot& it) { it.l2 = SampleSnapshot::networks(4); });
        PaintCounter::settle();
        const QStringList expected{u"Network 1"_s,   u"Network 2"_s,    u"Network 3"_s,  u"Network 4"_s,
                                   u"Refresh Now"_s, u"Preferences…"_s, u"Quit velisk"_s};
        QStringList reached;
        for (qsizetype i = 0; i < expected.size(); ++i) {
            press(Qt::Key_Tab);
            reached.append(focused());
        }
        QCOMPARE(reached, expected);
    }

    void rowsThatCameAfterLoadingHaveTheirPlaceToo() {
        m_view.reset();
        m_scene->store.snapshot = std::nullopt;
        open();
        m_scene->store.snapshot = SampleSnapshot::busyHour();
        PaintCounter::settle();
        QCOMPARE(steps(Qt::Key_Tab, Qt::NoModifier), inOrder);
    }

    void theFocusStaysWhereItIsWhenFiguresChange() {
        for (int i = 0; i < 3; ++i)
            press(Qt::Key_Tab);
        m_scene->change([](Snapshot& it) { it.l2[2].costGwei = 5; });
        PaintCounter::settle();
        QCOMPARE(focused(), u"Base"_s);
    }

    void theFocusMovesUpWhenItsRowGoes() {
        for (int i = 0; i < 6; ++i)
            press(Qt::Key_Tab);
        QCOMPARE(focused(), u"Starknet"_s);
        m_scene->change([](Snapshot& it) { it.l2.resize(3); });
        PaintCounter::settle();
        QCOMPARE(focused(), u"Base"_s);
    }

    void theFocusMovesToTheActionsWhenNoRowIsLeft() {
        press(Qt::Key_Tab);
        m_scene->change([](Snapshot& it) { it.l2.clear(); });
        PaintCounter::settle();
        QCOMPARE(focused(), u"Refresh Now"_s);
    }

    void theFocusStaysElsewhereWhenARowGoes() {
        press(Qt::Key_End);
        m_scene->change([](Snapshot& it) { it.l2.removeLast(); });
        PaintCounter::settle();
        QCOMPARE(focused(), u"Quit velisk"_s);
    }

    void theKeyboardsFocusCanBeSeenAndAClicksCannot() {
        press(Qt::Key_Tab);
        L2Row* row = qobject_cast<L2Row*>(QApplication::focusWidget());
        QVERIFY(row);
        const QImage byKey = row->grab().toImage();
        press(Qt::Key_Tab);
        const QImage without = row->grab().toImage();
        QVERIFY(byKey != without);
        row->setFocus(Qt::MouseFocusReason);
        QCOMPARE(row->grab().toImage(), without);
        press(Qt::Key_Shift);
        QCOMPARE(row->grab().toImage(), byKey);
        const QPoint corner(2, 2);
        QTest::mousePress(row, Qt::LeftButton, {}, corner);
        QTest::mouseRelease(row, Qt::LeftButton, {}, QPoint(-5, -5)); // Let go elsewhere, it is not pressed.
        QCOMPARE(row->grab().toImage(), without);
    }

    void returnAndSpaceActOnTheFocusedRow() {
        press(Qt::Key_Tab);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            QGuiApplication::clipboard()->clear();
            press(key);
            QCOMPARE(QGuiApplication::clipboard()->text(), u"Arbitrum 0.01 gwei"_s);
        }
    }

    void returnAndSpaceActOnTheActions() {
        QSignalSpy refresh(m_view.get(), &PopoverView::refreshRequested);
        QSignalSpy preferences(m_view.get(), &PopoverView::preferencesRequested);
        QSignalSpy quit(m_view.get(), &PopoverView::quitRequested);
        for (int i = 0; i < 7; ++i)
            press(Qt::Key_Tab);
        press(Qt::Key_Return);
        press(Qt::Key_Down);
        press(Qt::Key_Space);
        press(Qt::Key_Down);
        press(Qt::Key_Enter);
        QCOMPARE(refresh.size(), 1);
        QCOMPARE(preferences.size(), 1);
        QCOMPARE(quit.size(), 1);
    }

    void clicksAct() {
        QSignalSpy quit(m_view.get(), &PopoverView::quitRequested);
        QTest::mouseClick(m_view->findChildren<ActionRow*>().last(), Qt::LeftButton);
        QCOMPARE(quit.size(), 1);
    }

    void shortcutsAct_data() {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifier>("modifier");
        QTest::addColumn<int>("action");
        QTest::newRow("Ctrl+R") << Qt::Key_R << Qt::ControlModifier << 0;
        QTest::newRow("Ctrl+comma") << Qt::Key_Comma << Qt::ControlModifier << 1;
        QTest::newRow("Ctrl+Q") << Qt::Key_Q << Qt::ControlModifier << 2;
        QTest::newRow("Super+R") << Qt::Key_R << Qt::MetaModifier << 0;
        QTest::newRow("Super+comma") << Qt::Key_Comma << Qt::MetaModifier << 1;
        QTest::newRow("Super+Q") << Qt::Key_Q << Qt::MetaModifier << 2;
        QTest::newRow("R") << Qt::Key_R << Qt::NoModifier << -1;
        QTest::newRow("Alt+Q") << Qt::Key_Q << Qt::AltModifier << -1;
    }

    void shortcutsAct() {
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifier, modifier);
        QFETCH(int, action);
        QSignalSpy refresh(m_view.get(), &PopoverView::refreshRequested);
        QSignalSpy preferences(m_view.get(), &PopoverView::preferencesRequested);
        QSignalSpy quit(m_view.get(), &PopoverView::quitRequested);
        QTest::keyClick(m_view.get(), key, modifier);
        QCOMPARE(refresh.size(), action == 0 ? 1 : 0);
        QCOMPARE(preferences.size(), action == 1 ? 1 : 0);
        QCOMPARE(quit.size(), action == 2 ? 1 : 0);
    }

    void aHeldShortcutActsOnce() {
        QSignalSpy refresh(m_view.get(), &PopoverView::refreshRequested);
        for (const bool isRepeat : {false, true, true})
            qt_sendShortcutOverrideEvent(m_view.get(), 0, Qt::Key_R, Qt::ControlModifier, {}, isRepeat);
        QCOMPARE(refresh.size(), 1);
    }

    void aScrolledViewFollowsTheFocus() {
        m_scene->change([](Snapshot& it) { it.l2 = SampleSnapshot::networks(60); });
        PaintCounter::settle();
        QScrollArea area;
        area.setWidget(m_view.get());
        area.resize(360, 400);
        area.show();
        area.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&area));
        m_view->setFocus();
        const auto isFocusVisible = [&area] {
            const QWidget* button = QApplication::focusWidget();
            const QRect place(button->mapTo(area.viewport(), QPoint()), button->size());
            return area.viewport()->rect().contains(place);
        };
        for (const Qt::Key key : {Qt::Key_End, Qt::Key_Home, Qt::Key_Up, Qt::Key_Tab, Qt::Key_Down}) {
            press(key);
            QVERIFY(isFocusVisible());
        }
        m_view->setParent(nullptr);
    }

    void shortcutsActWhileLoadingToo() {
        m_scene->store.snapshot = std::nullopt;
        PaintCounter::settle();
        QSignalSpy refresh(m_view.get(), &PopoverView::refreshRequested);
        QTest::keyClick(m_view.get(), Qt::Key_R, Qt::ControlModifier);
        QCOMPARE(refresh.size(), 1);
        press(Qt::Key_Tab);
        QCOMPARE(focused(), u"Refresh Now"_s);
    }

private:
    /// Opens it as its window does.
    void open() {
        m_view = std::make_unique<PopoverView>(m_scene->store, m_scene->settings);
        m_view->show();
        m_view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
        m_view->setFocus();
    }

    /// A key for whatever has the focus.
    void press(Qt::Key key, Qt::KeyboardModifier modifier = Qt::NoModifier) {
        QWidget* target = QApplication::focusWidget();
        QTest::keyClick(target ? target : m_view.get(), key, modifier);
    }

    /// What is reached by as many presses as there are things to reach.
    QStringList steps(Qt::Key key, Qt::KeyboardModifier modifier) {
        QStringList reached;
        for (qsizetype i = 0; i < inOrder.size(); ++i) {
            press(key, modifier);
            reached.append(focused());
        }
        return reached;
    }

    std::unique_ptr<PopoverScene> m_scene;
    std::unique_ptr<PopoverView> m_view;
};

QTEST_MAIN(PopoverKeyboardTest)
#include "PopoverKeyboardTest.moc"
