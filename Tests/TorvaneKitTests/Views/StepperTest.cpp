#include "Views/Stepper.h"

#include "Support/PaintCounter.h"

#include <QAccessible>
#include <QTest>

#include <limits>
#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 smallest = std::numeric_limits<qint64>::min();
constexpr qint64 largest = std::numeric_limits<qint64>::max();
constexpr Stepper::Limits limits{1, 80};

} // namespace

class StepperTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<Stepper> m_stepper;

    StepButton* minus() const { return m_stepper->findChildren<StepButton*>()[0]; }
    StepButton* plus() const { return m_stepper->findChildren<StepButton*>()[1]; }

private Q_SLOTS:
    void init() {
        const auto text = [](qint64 value) { return QString::number(value) + u" kg"_s; };
        m_stepper = std::make_unique<Stepper>(u"Apples"_s, limits, text);
        connect(m_stepper.get(), &Stepper::chosen, m_stepper.get(), &Stepper::setValue);
        m_stepper->setValue(10);
        m_stepper->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_stepper.get(), 30'000));
    }

    void cleanup() { m_stepper.reset(); }

    void stepsEndAtTheLimits_data() {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<qint64>("lowered");
        QTest::addColumn<qint64>("raised");
        QTest::newRow("between") << qint64(10) << qint64(9) << qint64(11);
        QTest::newRow("above the least") << qint64(2) << qint64(1) << qint64(3);
        QTest::newRow("the least") << qint64(1) << qint64(1) << qint64(2);
        QTest::newRow("zero") << qint64(0) << qint64(1) << qint64(1);
        QTest::newRow("negative") << qint64(-5) << qint64(1) << qint64(-4);
        QTest::newRow("smallest number") << smallest << qint64(1) << smallest + 1;
        QTest::newRow("below the greatest") << qint64(79) << qint64(78) << qint64(80);
        QTest::newRow("the greatest") << qint64(80) << qint64(79) << qint64(80);
        QTest::newRow("beyond") << qint64(200) << qint64(199) << qint64(80);
        QTest::newRow("largest number") << largest << largest - 1 << qint64(80);
    }

    void stepsEndAtTheLimits() {
        QFETCH(const qint64, value);
        QFETCH(const qint64, lowered);
        QFETCH(const qint64, raised);
        QCOMPARE(Stepper::lowered(value, limits), lowered);
        QCOMPARE(Stepper::raised(value, limits), raised);
        m_stepper->setValue(value);
        QTest::mouseClick(minus(), Qt::LeftButton);
        QCOMPARE(m_stepper->value(), lowered);
        m_stepper->setValue(value);
        QTest::mouseClick(plus(), Qt::LeftButton);
        QCOMPARE(m_stepper->value(), raised);
    }

    void keysStep_data() {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<qint64>("from");
        QTest::addColumn<qint64>("to");
        QTest::newRow("up") << Qt::Key_Up << qint64(10) << qint64(11);
        QTest::newRow("right") << Qt::Key_Right << qint64(10) << qint64(11);
        QTest::newRow("plus") << Qt::Key_Plus << qint64(10) << qint64(11);
        QTest::newRow("down") << Qt::Key_Down << qint64(10) << qint64(9);
        QTest::newRow("left") << Qt::Key_Left << qint64(10) << qint64(9);
        QTest::newRow("minus") << Qt::Key_Minus << qint64(10) << qint64(9);
        QTest::newRow("page up") << Qt::Key_PageUp << qint64(10) << qint64(20);
        QTest::newRow("page up to the end") << Qt::Key_PageUp << qint64(75) << qint64(80);
        QTest::newRow("page down") << Qt::Key_PageDown << qint64(30) << qint64(20);
        QTest::newRow("page down to the end") << Qt::Key_PageDown << qint64(5) << qint64(1);
        QTest::newRow("page down from the smallest") << Qt::Key_PageDown << smallest << qint64(1);
        QTest::newRow("page up from the largest") << Qt::Key_PageUp << largest << qint64(80);
        QTest::newRow("home") << Qt::Key_Home << qint64(10) << qint64(1);
        QTest::newRow("end") << Qt::Key_End << qint64(10) << qint64(80);
        QTest::newRow("another key") << Qt::Key_A << qint64(10) << qint64(10);
    }

    void keysStep() {
        QFETCH(const Qt::Key, key);
        QFETCH(const qint64, from);
        QFETCH(const qint64, to);
        m_stepper->setValue(from);
        QTest::keyClick(m_stepper.get(), key);
        QCOMPARE(m_stepper->value(), to);
    }

    void shortcutsAreLeftToOthers() {
        for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier})
            QTest::keyClick(m_stepper.get(), Qt::Key_Up, modifier);
        QCOMPARE(m_stepper->value(), 10);
    }

    void theButtonsStayWhereTheyAreWhileTheyAreClicked() {
        const int width = m_stepper->sizeHint().width();
        for (const qint64 value : {1, 9, 10, 80}) {
            m_stepper->setValue(value);
            QCOMPARE(m_stepper->sizeHint().width(), width);
        }
    }

    void aLongNumberIsShownWhole() {
        m_stepper->setValue(smallest);
        const int text = m_stepper->fontMetrics().horizontalAdvance(u"-9223372036854775808 kg"_s);
        QVERIFY(m_stepper->sizeHint().width() >= text + minus()->width() + plus()->width());
    }

    void theSameValueAgainPaintsNothing() {
        const PaintCounter paints(*m_stepper);
        m_stepper->setValue(10);
        PaintCounter::settle();
        QCOMPARE(paints.count(), 0);
        m_stepper->setValue(11);
        PaintCounter::settle();
        QVERIFY(paints.count() > 0);
    }

    void forTheKeyboardItIsOneControl() {
        QVERIFY(m_stepper->focusPolicy() & Qt::TabFocus);
        QCOMPARE(minus()->focusPolicy(), Qt::NoFocus);
        QCOMPARE(plus()->focusPolicy(), Qt::NoFocus);
    }

    void itIsReadAsASpinBox() {
        QAccessibleInterface* spinBox = QAccessible::queryAccessibleInterface(m_stepper.get());
        QCOMPARE(spinBox->role(), QAccessible::SpinBox);
        QCOMPARE(spinBox->text(QAccessible::Name), u"Apples"_s);
        QCOMPARE(spinBox->text(QAccessible::Value), u"10 kg"_s);
        QAccessibleValueInterface* value = spinBox->valueInterface();
        QVERIFY(value);
        QCOMPARE(value->currentValue(), QVariant(qint64(10)));
        QCOMPARE(value->minimumValue(), QVariant(qint64(1)));
        QCOMPARE(value->maximumValue(), QVariant(qint64(80)));
        value->setCurrentValue(500);
        QCOMPARE(m_stepper->value(), 80);
        value->setCurrentValue(-500);
        QCOMPARE(m_stepper->value(), 1);
    }
};

QTEST_MAIN(StepperTest)
#include "StepperTest.moc"
