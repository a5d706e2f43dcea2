#include "Popover.h"

#include "PopoverPlacement.h"
#include "Support/SizedContent.h"

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>

using namespace torvane;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Keeps from a window that it is no longer active.
class DeafToLeaving final : public QObject {
    bool eventFilter(QObject*, QEvent* event) override { return event->type() == QEvent::WindowDeactivate; }
};

} // namespace

class PopoverTest final : public QObject {
    Q_OBJECT

    int m_height = 500;
    QPointer<SizedContent> m_content;
    const QRect m_badge{600, 4, 22, 22};

    Popover::MakeContent makeContent() {
        return [this] {
            auto content = std::make_unique<SizedContent>(m_height);
            m_content = content.get();
            return content;
        };
    }

    QWidget* window() const { return m_content->window(); }
    QRect expectedPlace(int height) const;
    void showOpen(Popover& popover);

private Q_SLOTS:
    void init() { m_height = 500; }
    void nothingExistsBeforeTheFirstClick();
    void aRehearsalLeavesNothing();
    void aClickOpensItAtTheBadge();
    void theNextClickClosesAndDiscardsIt();
    void escapeClosesIt();
    void turningAwayClosesIt();
    void theClickThatTookTheFocusDoesNotOpenItAgain();
    void whoDoesNotClickTheBadgeOpensItAtOnce();
    void afterAnotherWindowOfOursAClickOpensItAtOnce();
    void aLaterClickOpensItAgain();
    void afterEscapeAClickOpensItAtOnce();
    void openingAnOpenOneChangesNothing();
    void openingOneThatLostTheKeyboardGivesItBack();
    void onlyThePointersPlaceKeepsClearOfTheIcon();
    void anUnknownPlaceIsTheCorner();
    void anUnknownPlaceIsTheLastOne();
    void itFollowsItsContent();
    void contentWhoseHeightGoesByItsWidthIsAsHigh();
    void theWindowIsATranslucentToolOnTop();
    void keysAreTheContents();
    void twentyOpeningsLeaveNothing();
};

QRect PopoverTest::expectedPlace(int height) const {
    return PopoverPlacement::place({SizedContent::fixedWidth, height}, m_badge,
                                   QGuiApplication::primaryScreen()->availableGeometry());
}

void PopoverTest::showOpen(Popover& popover) {
    popover.toggle(m_badge);
    QVERIFY(popover.isOpen());
    QVERIFY(QTest::qWaitForWindowExposed(window()));
    QApplication::setActiveWindow(window());
    QTRY_VERIFY(window()->isActiveWindow());
}

void PopoverTest::nothingExistsBeforeTheFirstClick() {
    const Popover popover(makeContent());
    QVERIFY(!popover.isOpen());
    QVERIFY(!m_content);
}

void PopoverTest::aRehearsalLeavesNothing() {
    int made = 0;
    Popover popover([&] {
        ++made;
        return makeContent()();
    });
    popover.rehearse();
    QCOMPARE(made, 1);
    QVERIFY(!popover.isOpen() && !m_content);
    popover.open(m_badge);
    const QPointer<SizedContent> content = m_content;
    popover.rehearse();
    QCOMPARE(made, 2); // The open one has loaded everything.
    QVERIFY(popover.isOpen() && content);
}

void PopoverTest::aClickOpensItAtTheBadge() {
    Popover popover(makeContent());
    popover.toggle(m_badge);
    QVERIFY(window()->isVisible());
    QCOMPARE(window()->geometry(), expectedPlace(500));
    QCOMPARE(m_content->size(), QSize(SizedContent::fixedWidth, 500));
    QCOMPARE(window()->windowTitle(), u"velisk"_s);
}

void PopoverTest::theNextClickClosesAndDiscardsIt() {
    Popover popover(makeContent());
    popover.toggle(m_badge);
    const QPointer<QWidget> shown = window();
    popover.toggle(m_badge);
    QVERIFY(!popover.isOpen());
    QVERIFY(!shown->isVisible());
    QTRY_VERIFY(!m_content && !shown);
    popover.toggle(m_badge);
    QVERIFY(m_content && window()->isVisible());
}

void PopoverTest::escapeClosesIt() {
    Popover popover(makeContent());
    showOpen(popover);
    QTest::keyClick(window()->windowHandle(), Qt::Key_A);
    QVERIFY(popover.isOpen());
    QTest::keyClick(window()->windowHandle(), Qt::Key_Escape);
    QVERIFY(!popover.isOpen());
    QTRY_VERIFY(!m_content);
}

void PopoverTest::turningAwayClosesIt() {
    QWidget other;
    other.show();
    Popover popover(makeContent());
    showOpen(popover);
    QApplication::setActiveWindow(&other);
    QTRY_VERIFY(!popover.isOpen());
    QTRY_VERIFY(!m_content);
}

void PopoverTest::theClickThatTookTheFocusDoesNotOpenItAgain() {
    Popover popover(makeContent(), 24h);
    showOpen(popover);
    QApplication::setActiveWindow(nullptr);
    QTRY_VERIFY(!popover.isOpen());
    popover.toggle(m_badge);
    QVERIFY(!popover.isOpen());
    popover.toggle(m_badge); // Only one click can have been answered.
    QVERIFY(popover.isOpen());
}

void PopoverTest::whoDoesNotClickTheBadgeOpensItAtOnce() {
    Popover popover(makeContent(), 24h);
    showOpen(popover);
    QApplication::setActiveWindow(nullptr);
    QTRY_VERIFY(!popover.isOpen());
    popover.open(m_badge);
    QVERIFY(popover.isOpen());
}

void PopoverTest::afterAnotherWindowOfOursAClickOpensItAtOnce() {
    QWidget preferences;
    preferences.show();
    Popover popover(makeContent(), 24h);
    showOpen(popover);
    QApplication::setActiveWindow(&preferences);
    QTRY_VERIFY(!popover.isOpen());
    popover.toggle(m_badge); // No panel has taken the keyboard.
    QVERIFY(popover.isOpen());
}

void PopoverTest::aLaterClickOpensItAgain() {
    Popover popover(makeContent(), 0ms);
    showOpen(popover);
    QApplication::setActiveWindow(nullptr);
    QTRY_VERIFY(!popover.isOpen());
    popover.toggle(m_badge);
    QVERIFY(popover.isOpen());
}

void PopoverTest::afterEscapeAClickOpensItAtOnce() {
    Popover popover(makeContent(), 24h);
    showOpen(popover);
    QTest::keyClick(window()->windowHandle(), Qt::Key_Escape);
    QVERIFY(!popover.isOpen());
    popover.toggle(m_badge);
    QVERIFY(popover.isOpen());
    popover.toggle(m_badge); // Nor is this the window's own doing.
    popover.toggle(m_badge);
    QVERIFY(popover.isOpen());
}

void PopoverTest::openingAnOpenOneChangesNothing() {
    Popover popover(makeContent());
    popover.open(m_badge);
    const QPointer<SizedContent> content = m_content;
    popover.open(QRect(10, 500, 22, 22));
    QCOMPARE(m_content, content);
    QCOMPARE(window()->geometry(), expectedPlace(500));
    popover.close();
    popover.close();
    QVERIFY(!popover.isOpen());
}

void PopoverTest::openingOneThatLostTheKeyboardGivesItBack() {
    Popover popover(makeContent());
    showOpen(popover);
    DeafToLeaving deaf; // As where the window manager never gave it the keyboard, so that it cannot lose it.
    window()->installEventFilter(&deaf);
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    QTRY_VERIFY(other.isActiveWindow());
    QVERIFY(popover.isOpen());
    popover.open({});
    QTRY_VERIFY(window()->isActiveWindow());
    QCOMPARE(window()->geometry(), expectedPlace(500));
    popover.close(); // Before what it is deaf by.
}

void PopoverTest::onlyThePointersPlaceKeepsClearOfTheIcon() {
    Popover popover(makeContent());
    popover.open(QRect(400, 16, 1, 1));
    QCOMPARE(window()->y(), 28);
}

void PopoverTest::anUnknownPlaceIsTheCorner() {
    Popover popover(makeContent());
    popover.open({});
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    QCOMPARE(window()->geometry(),
             QRect(area.right() + 1 - SizedContent::fixedWidth, area.top(), SizedContent::fixedWidth, 500));
}

void PopoverTest::anUnknownPlaceIsTheLastOne() {
    Popover popover(makeContent());
    popover.toggle(m_badge);
    popover.toggle({});
    QVERIFY(!popover.isOpen());
    popover.open({});
    QCOMPARE(window()->geometry(), expectedPlace(500));
}

void PopoverTest::itFollowsItsContent() {
    Popover popover(makeContent());
    showOpen(popover);
    for (const int height : {620, 300, 301}) {
        m_content->setHeight(height);
        QTRY_COMPARE(window()->geometry(), expectedPlace(height));
        QTRY_COMPARE(m_content->height(), height);
    }
}

void PopoverTest::contentWhoseHeightGoesByItsWidthIsAsHigh() {
    const auto wrapped = [] {
        auto content = std::make_unique<QWidget>();
        auto* layout = new QVBoxLayout(content.get());
        auto* row = new QWidget;
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        policy.setHeightForWidth(true);
        row->setSizePolicy(policy);
        row->setFixedHeight(77);
        layout->addWidget(row);
        layout->setContentsMargins(0, 0, 0, 0);
        content->setFixedWidth(SizedContent::fixedWidth);
        return content;
    };
    Popover popover(wrapped);
    popover.open(m_badge);
    QCOMPARE(QApplication::topLevelAt(600, 60)->size(), QSize(SizedContent::fixedWidth, 77));
}

void PopoverTest::theWindowIsATranslucentToolOnTop() {
    Popover popover(makeContent());
    popover.open(m_badge);
    QVERIFY(window()->testAttribute(Qt::WA_TranslucentBackground));
    QCOMPARE(window()->windowType(), Qt::Tool); // A popup of Qt's would swallow the next click.
    QVERIFY(window()->windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(window()->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

void PopoverTest::keysAreTheContents() {
    Popover popover(makeContent());
    showOpen(popover);
    QCOMPARE(QApplication::focusWidget(), m_content.data());
}

void PopoverTest::twentyOpeningsLeaveNothing() {
    Popover popover(makeContent());
    const qsizetype before = QApplication::allWidgets().size();
    for (int i = 0; i < 20; ++i) {
        showOpen(popover);
        const QPointer<QWidget> shown = window();
        popover.toggle(m_badge);
        QTRY_VERIFY(!m_content && !shown);
    }
    QCOMPARE(QApplication::allWidgets().size(), before);
    QVERIFY(QGuiApplication::allWindows().isEmpty());
}

QTEST_MAIN(PopoverTest)
#include "PopoverTest.moc"
