#include "Views/SegmentedControl.h"

#include "Support/PaintCounter.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

class SegmentedControlTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<SegmentedControl> m_control;

    QAbstractButton* segment(int index) const { return m_control->findChildren<QAbstractButton*>()[index]; }

    /// All that the user chooses while this happens.
    template <class Action>
    QList<int> chosenDuring(Action action) const {
        QSignalSpy spy(m_control.get(), &SegmentedControl::chosen);
        action();
        QList<int> chosen;
        for (const QVariantList& arguments : spy)
            chosen.append(arguments[0].toInt());
        return chosen;
    }

private Q_SLOTS:
    void init() {
        m_control = std::make_unique<SegmentedControl>(u"Speed"_s, QStringList{u"Slow"_s, u"Usual"_s, u"Fast"_s});
        m_control->resize(230, 28);
        m_control->select(1);
        m_control->show();
        m_control->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_control.get(), 30'000));
    }

    void cleanup() { m_control.reset(); }

    void whatIsLeftOfTheWidthIsSharedEvenly() {
        QCOMPARE(SegmentedControl::widths({40, 20, 30}, 120), (QList<double>{50, 30, 40}));
        QCOMPARE(SegmentedControl::widths({40, 20, 30}, 90), (QList<double>{40, 20, 30}));
        QCOMPARE(SegmentedControl::widths({40, 20, 30}, 60), (QList<double>{30, 10, 20}));
        QCOMPARE(SegmentedControl::widths({}, 60), QList<double>());
    }

    void theSegmentsFillTheControlInOrder() {
        QCOMPARE(segment(0)->geometry().left(), 2);
        QCOMPARE(segment(1)->geometry().left(), segment(0)->geometry().right() + 1);
        QCOMPARE(segment(2)->geometry().left(), segment(1)->geometry().right() + 1);
        QCOMPARE(segment(2)->geometry().right(), 227);
    }

    void fromRightToLeftTheFirstSegmentIsTheRightmost() {
        m_control->setLayoutDirection(Qt::RightToLeft);
        m_control->resize(240, 28);
        QCOMPARE(segment(0)->geometry().right(), 237);
        QCOMPARE(segment(2)->geometry().left(), 2);
        QCOMPARE(chosenDuring([this] { QTest::keyClick(segment(1), Qt::Key_Left); }), QList<int>{2});
    }

    void aClickChooses() {
        QCOMPARE(chosenDuring([this] { QTest::mouseClick(segment(2), Qt::LeftButton); }), QList<int>{2});
        QCOMPARE(m_control->selected(), 2);
        QVERIFY(!segment(1)->isChecked());
    }

    void aClickOnTheSelectedSegmentChoosesItAgain() {
        QCOMPARE(chosenDuring([this] { QTest::mouseClick(segment(1), Qt::LeftButton); }), QList<int>{1});
        QCOMPARE(m_control->selected(), 1);
    }

    void whatIsSelectedFromOutsideIsNotAnnounced() {
        QCOMPARE(chosenDuring([this] { m_control->select(0); }), QList<int>());
        QCOMPARE(m_control->selected(), 0);
    }

    void keysChoose_data() {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<int>("from");
        QTest::addColumn<QList<int>>("chosen");
        QTest::newRow("right") << Qt::Key_Right << 1 << QList<int>{2};
        QTest::newRow("down") << Qt::Key_Down << 1 << QList<int>{2};
        QTest::newRow("left") << Qt::Key_Left << 1 << QList<int>{0};
        QTest::newRow("up") << Qt::Key_Up << 1 << QList<int>{0};
        QTest::newRow("home") << Qt::Key_Home << 2 << QList<int>{0};
        QTest::newRow("end") << Qt::Key_End << 0 << QList<int>{2};
        QTest::newRow("not beyond the last") << Qt::Key_Right << 2 << QList<int>{};
        QTest::newRow("not beyond the first") << Qt::Key_Left << 0 << QList<int>{};
        QTest::newRow("another key") << Qt::Key_A << 1 << QList<int>{};
    }

    void keysChoose() {
        QFETCH(const Qt::Key, key);
        QFETCH(const int, from);
        QFETCH(const QList<int>, chosen);
        m_control->select(from);
        segment(from)->setFocus();
        QCOMPARE(chosenDuring([&] { QTest::keyClick(segment(from), key); }), chosen);
        QVERIFY(segment(m_control->selected())->hasFocus());
    }

    void shortcutsAreLeftToOthers() {
        const auto press = [this] {
            for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier})
                QTest::keyClick(segment(1), Qt::Key_Home, modifier);
        };
        QCOMPARE(chosenDuring(press), QList<int>());
    }

    void theKeyboardStopsOnceAtTheSelectedSegment() {
        for (const int selected : {0, 1, 2}) {
            m_control->select(selected);
            for (const int each : {0, 1, 2})
                QCOMPARE(bool(segment(each)->focusPolicy() & Qt::TabFocus), each == selected);
        }
    }

    void theSameSelectionAgainPaintsNothing() {
        const PaintCounter paints(*m_control);
        m_control->select(1);
        PaintCounter::settle();
        QCOMPARE(paints.count(), 0);
        m_control->select(0);
        PaintCounter::settle();
        QVERIFY(paints.count() > 0);
    }

    void itIsReadAsAGroupOfRadioButtons() {
        const QAccessibleInterface* group = QAccessible::queryAccessibleInterface(m_control.get());
        QCOMPARE(group->role(), QAccessible::Grouping);
        QCOMPARE(group->text(QAccessible::Name), u"Speed"_s);
        QCOMPARE(group->childCount(), 3);
        for (const int each : {0, 1, 2}) {
            QAccessibleInterface* button = group->child(each);
            QCOMPARE(button->role(), QAccessible::RadioButton);
            QCOMPARE(button->text(QAccessible::Name), segment(each)->text());
            QCOMPARE(bool(button->state().checked), each == 1);
        }
    }
};

QTEST_MAIN(SegmentedControlTest)
#include "SegmentedControlTest.moc"
