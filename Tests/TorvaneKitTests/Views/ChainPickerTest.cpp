#include "Views/ChainPicker.h"

#include "Support/PaintCounter.h"
#include "Support/ToolTipReading.h"
#include "Views/TextRun.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QTest>
#include <QWheelEvent>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30'000;
constexpr int laterThanADoubleClickMs = 1000;
const QList<BadgeChain> three{BadgeChain::ethereum(), BadgeChain::l2(u"Base"_s), BadgeChain::l2(u"Linea"_s)};

} // namespace

class ChainPickerTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<ChainPicker> m_picker;
    QList<BadgeChain> m_chosen;

    QStringList titles() const {
        QStringList titles;
        for (int i = 0; i < m_picker->count(); ++i)
            titles.append(m_picker->itemText(i));
        return titles;
    }

    bool isOpen() const { return m_picker->view()->isVisible(); }

private Q_SLOTS:
    void init() {
        m_chosen.clear();
        m_picker = std::make_unique<ChainPicker>(u"Chain"_s);
        m_picker->offer(three);
        m_picker->select(BadgeChain::ethereum());
        connect(m_picker.get(), &ChainPicker::chosen, this, [this](const BadgeChain& next) { m_chosen.append(next); });
        m_picker->setFixedWidth(230);
        m_picker->show();
        m_picker->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_picker.get(), limitMs));
    }

    void cleanup() { m_picker.reset(); }

    void theNetworksAreOfferedByTheirTitles() {
        QCOMPARE(titles(), (QStringList{u"Ethereum"_s, u"Base"_s, u"Linea"_s}));
        QCOMPARE(m_picker->currentText(), u"Ethereum"_s);
    }

    void aClickInTheListChooses() {
        QTest::mouseClick(m_picker.get(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(isOpen(), limitMs);
        const QAbstractItemView* list = m_picker->view();
        const QPoint place = list->visualRect(m_picker->model()->index(2, 0)).center();
        QTest::mouseMove(list->viewport(), place);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place, laterThanADoubleClickMs);
        QTRY_COMPARE_WITH_TIMEOUT(m_chosen, QList<BadgeChain>{BadgeChain::l2(u"Linea"_s)}, limitMs);
    }

    void theListHangsBelowTheControl() {
        QTest::mouseClick(m_picker.get(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(isOpen(), limitMs);
        const int bottom = m_picker->mapToGlobal(QPoint(0, m_picker->height())).y();
        QVERIFY(m_picker->view()->window()->y() >= bottom - 1);
        QVERIFY(m_picker->view()->window()->width() >= m_picker->width());
    }

    void keysChoose_data() {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("chosen");
        QTest::newRow("down") << Qt::Key_Down << u"Base"_s;
        QTest::newRow("end") << Qt::Key_End << u"Linea"_s;
        QTest::newRow("letter") << Qt::Key_L << u"Linea"_s;
    }

    void keysChoose() {
        QFETCH(const Qt::Key, key);
        QFETCH(const QString, chosen);
        QTest::keyClick(m_picker.get(), key);
        QCOMPARE(m_chosen, QList<BadgeChain>{BadgeChain::l2(chosen)});
    }

    void homeGoesToEthereum() {
        m_picker->select(BadgeChain::l2(u"Linea"_s));
        QTest::keyClick(m_picker.get(), Qt::Key_Home);
        QCOMPARE(m_chosen, QList<BadgeChain>{BadgeChain::ethereum()});
    }

    void spaceOpensTheListAndEscapeClosesIt() {
        QTest::keyClick(m_picker.get(), Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(isOpen(), limitMs);
        QTest::keyClick(m_picker->view(), Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(!isOpen(), limitMs);
        QCOMPARE(m_chosen, QList<BadgeChain>());
    }

    void returnInTheListChooses() {
        QTest::keyClick(m_picker.get(), Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(isOpen(), limitMs);
        QTest::keyClick(m_picker->view(), Qt::Key_Down);
        QTest::keyClick(m_picker->view(), Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(m_chosen, QList<BadgeChain>{BadgeChain::l2(u"Base"_s)}, limitMs);
    }

    void whatIsSelectedFromOutsideIsNotAnnounced() {
        m_picker->select(BadgeChain::l2(u"Base"_s));
        QCOMPARE(m_picker->currentText(), u"Base"_s);
        QCOMPARE(m_chosen, QList<BadgeChain>());
    }

    void aNetworkThatIsNotOfferedIsNoItem() {
        m_picker->select(BadgeChain::l2(u"Gone"_s));
        QCOMPARE(m_picker->currentIndex(), -1);
        QCOMPARE(m_picker->placeholderText(), u"Gone"_s);
        QCOMPARE(titles(), (QStringList{u"Ethereum"_s, u"Base"_s, u"Linea"_s}));
        m_picker->offer(three + QList<BadgeChain>{BadgeChain::l2(u"Gone"_s)});
        QCOMPARE(m_picker->currentText(), u"Gone"_s);
        QCOMPARE(m_chosen, QList<BadgeChain>());
    }

    void aLayer2ThatIsCalledEthereumIsAnother() {
        m_picker->offer({BadgeChain::ethereum(), BadgeChain::l2(u"Ethereum"_s)});
        m_picker->select(BadgeChain::l2(u"Ethereum"_s));
        QCOMPARE(m_picker->currentIndex(), 1);
        QTest::keyClick(m_picker.get(), Qt::Key_Up);
        QCOMPARE(m_chosen, QList<BadgeChain>{BadgeChain::ethereum()});
    }

    void anOpenListFollowsAndStaysOpen() {
        m_picker->select(BadgeChain::l2(u"Linea"_s));
        QTest::mouseClick(m_picker.get(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(isOpen(), limitMs);
        m_picker->offer({BadgeChain::ethereum(), BadgeChain::l2(u"New"_s), BadgeChain::l2(u"Linea"_s)});
        QVERIFY(isOpen());
        QCOMPARE(titles(), (QStringList{u"Ethereum"_s, u"New"_s, u"Linea"_s}));
        QCOMPARE(m_picker->currentIndex(), 2);
        QCOMPARE(m_chosen, QList<BadgeChain>());
    }

    void anOpenListIsAsHighAsTheNetworksAreMany() {
        QTest::mouseClick(m_picker.get(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(isOpen(), limitMs);
        const int ofThree = m_picker->view()->window()->height();
        m_picker->offer(three + QList<BadgeChain>{BadgeChain::l2(u"New"_s)});
        const int ofFour = m_picker->view()->window()->height();
        QVERIFY(ofFour > ofThree);
        m_picker->offer(three.first(2));
        QCOMPARE(m_picker->view()->window()->height(), ofThree - (ofFour - ofThree));
        QVERIFY(isOpen());
    }

    void aTitleIsOneLine() {
        m_picker->offer({BadgeChain::ethereum(), BadgeChain::l2(u"Two\nlines"_s)});
        QCOMPARE(titles(), (QStringList{u"Ethereum"_s, u"Two lines"_s}));
        QTest::keyClick(m_picker.get(), Qt::Key_Down);
        QCOMPARE(m_chosen, QList<BadgeChain>{BadgeChain::l2(u"Two\nlines"_s)});
        m_picker->select(BadgeChain::l2(u"Also\ntwo"_s));
        QCOMPARE(m_picker->shownTitle(), u"Also two"_s);
    }

    void aTitleThatIsCutOffIsItsToolTip() {
        const QString longName = u"<b>"_s + QString(60, u'W');
        m_picker->offer({BadgeChain::ethereum(), BadgeChain::l2(longName)});
        QCOMPARE(toolTipOf(*m_picker), QString());
        m_picker->select(BadgeChain::l2(longName));
        QCOMPARE(toolTipOf(*m_picker), longName);
        QTest::mouseClick(m_picker.get(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(isOpen(), limitMs);
        QAbstractItemView* list = m_picker->view();
        const auto toolTipOfRow = [list](int row) {
            const QPoint place = list->visualRect(list->model()->index(row, 0)).center();
            QHelpEvent asks(QEvent::ToolTip, place, list->viewport()->mapToGlobal(place));
            QCoreApplication::sendEvent(list->viewport(), &asks);
            return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText();
        };
        QCOMPARE(toolTipOfRow(1), longName);
        QToolTip::hideText();
        QTRY_VERIFY_WITH_TIMEOUT(!QToolTip::isVisible(), limitMs);
        QCOMPARE(toolTipOfRow(0), QString());
    }

    void anEndlessTitleIsNotMeasuredWhole() {
        m_picker->select(BadgeChain::l2(QString(1'000'000, u'W')));
        QCOMPARE(m_picker->shownTitle().size(), TextRun::mostDrawn);
    }

    void shortcutsAreLeftToOthers() {
        QKeyEvent shortcut(QEvent::KeyPress, Qt::Key_L, Qt::ControlModifier, u"\f"_s);
        QCoreApplication::sendEvent(m_picker.get(), &shortcut);
        QVERIFY(!shortcut.isAccepted());
        QCOMPARE(m_chosen, QList<BadgeChain>());
    }

    void theWheelChoosesNothing() {
        QWheelEvent event(QPointF(5, 5), m_picker->mapToGlobal(QPointF(5, 5)), QPoint(0, -120), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_picker.get(), &event);
        QVERIFY(!event.isAccepted());
        QCOMPARE(m_picker->currentIndex(), 0);
        QCOMPARE(m_chosen, QList<BadgeChain>());
    }

    void theSameNetworksAgainPaintNothing() {
        const PaintCounter paints(*m_picker);
        m_picker->offer(three);
        m_picker->select(BadgeChain::ethereum());
        PaintCounter::settle();
        QCOMPARE(paints.count(), 0);
    }

    void itIsReadAsAComboBox() {
        QAccessibleInterface* comboBox = QAccessible::queryAccessibleInterface(m_picker.get());
        QCOMPARE(comboBox->role(), QAccessible::ComboBox);
        QCOMPARE(comboBox->text(QAccessible::Name), u"Chain"_s);
        QCOMPARE(comboBox->text(QAccessible::Value), u"Ethereum"_s);
        m_picker->select(BadgeChain::l2(u"Linea"_s));
        const QAccessibleInterface* list = comboBox->child(0);
        QCOMPARE(list->role(), QAccessible::List);
        for (int i = 0; i < list->childCount(); ++i)
            QCOMPARE(bool(list->child(i)->state().selected), i == 2);
        m_picker->select(BadgeChain::l2(u"Gone"_s));
        QCOMPARE(comboBox->text(QAccessible::Value), u"Gone"_s);
        comboBox->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
        QTRY_VERIFY_WITH_TIMEOUT(isOpen(), limitMs);
        QVERIFY(comboBox->state().expanded);
    }
};

QTEST_MAIN(ChainPickerTest)
#include "ChainPickerTest.moc"
