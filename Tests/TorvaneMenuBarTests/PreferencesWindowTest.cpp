#include "PreferencesWindow.h"

#include "TorvaneKitTests/Views/PreferencesFixture.h"
#include "Views/ChainPicker.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QSignalSpy>
#include <QWindow>

using namespace torvane;
using namespace Qt::StringLiterals;
using Section = PreferencesView::Section;

namespace {

constexpr int limitMs = 30'000;

} // namespace

class PreferencesWindowTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<PreferencesFixture> m_user;
    std::unique_ptr<Preferences> m_preferences;

    void open() const {
        m_preferences->open();
        QVERIFY(QTest::qWaitForWindowActive(m_preferences->window(), limitMs));
    }

    PreferencesView* view() const { return m_preferences->window()->findChild<PreferencesView*>(); }

    void go(Section section) const {
        QTest::mouseClick(view()->findChildren<SidebarItem*>()[static_cast<int>(section)], Qt::LeftButton);
    }

    bool isClosed() const { return !m_preferences->window(); }

private Q_SLOTS:
    void init() {
        QApplication::setQuitOnLastWindowClosed(false); // As the program does.
        m_user = std::make_unique<PreferencesFixture>();
        m_preferences = std::make_unique<Preferences>(*m_user->store, *m_user->settings, m_user->updater);
    }

    void cleanup() {
        m_preferences.reset();
        m_user.reset();
    }

    void thereIsNoWindowUntilItIsOpened() {
        QVERIFY(isClosed());
        QCOMPARE(QApplication::topLevelWidgets().size(), 0);
    }

    void theWindowHasATitleAndAFixedSize() {
        open();
        const PreferencesWindow* window = m_preferences->window();
        QCOMPARE(window->windowTitle(), u"velisk Preferences"_s);
        QCOMPARE(window->size(), QSize(660, 520));
        QCOMPARE(window->minimumSize(), window->maximumSize());
        QCOMPARE(window->windowType(), Qt::Window);
        QVERIFY(!window->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
        QVERIFY(!window->windowIcon().isNull());
    }

    void anOpenWindowIsUsedAgainAsItIs() {
        open();
        const PreferencesWindow* window = m_preferences->window();
        go(Section::alerts);
        m_preferences->window()->setWindowState(Qt::WindowMinimized);
        open();
        QCOMPARE(m_preferences->window(), window);
        QCOMPARE(view()->section(), Section::alerts);
        QVERIFY(!window->isMinimized());
        QVERIFY(window->isActiveWindow());
    }

    void aNewWindowStartsAtGeneral() {
        open();
        go(Section::about);
        m_preferences->window()->close();
        QTRY_VERIFY_WITH_TIMEOUT(isClosed(), limitMs);
        open();
        QCOMPARE(view()->section(), Section::general);
    }

    void aWindowThatIsBeingDiscardedIsNotUsedAgain() {
        open();
        go(Section::about);
        m_preferences->window()->close();
        open();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!isClosed());
        QVERIFY(m_preferences->window()->isVisible());
        QCOMPARE(view()->section(), Section::general);
    }

    void closingItLeavesTheProgramRunning() {
        const QSignalSpy quits(qApp, &QCoreApplication::aboutToQuit);
        open();
        m_preferences->window()->close();
        QTRY_VERIFY_WITH_TIMEOUT(isClosed(), limitMs);
        QCoreApplication::processEvents();
        QCOMPARE(quits.size(), 0);
        open();
        QVERIFY(m_preferences->window()->isVisible());
    }

    void keysCloseIt_data() {
        QTest::addColumn<QKeySequence>("keys");
        QTest::newRow("escape") << QKeySequence(Qt::Key_Escape);
        QTest::newRow("control and W") << QKeySequence(Qt::CTRL | Qt::Key_W);
    }

    void keysCloseIt() {
        QFETCH(const QKeySequence, keys);
        open();
        QTest::keySequence(m_preferences->window(), keys);
        QTRY_VERIFY_WITH_TIMEOUT(isClosed(), limitMs);
    }

    void keysCloseItFromThePickerToo_data() { keysCloseIt_data(); }

    void keysCloseItFromThePickerToo() {
        QFETCH(const QKeySequence, keys);
        open();
        go(Section::menuBar);
        auto* picker = view()->findChild<ChainPicker*>();
        picker->setFocus();
        QTest::keySequence(picker, keys);
        QTRY_VERIFY_WITH_TIMEOUT(isClosed(), limitMs);
    }

    void escapeClosesTheOpenListFirst() {
        m_user->store->snapshot = PreferencesFixture::snapshot();
        open();
        go(Section::menuBar);
        auto* picker = view()->findChild<ChainPicker*>();
        QTest::mouseClick(picker, Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(picker->view()->isVisible(), limitMs);
        // As from the keyboard: to whichever window has it.
        QTest::keyClick(picker->view()->window()->windowHandle(), Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(!picker->view()->isVisible(), limitMs);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!isClosed());
        QTest::keyClick(m_preferences->window()->windowHandle(), Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(isClosed(), limitMs);
    }

    void itGoesWithWhatItShows() {
        open();
        const QPointer<PreferencesWindow> window = m_preferences->window();
        m_preferences.reset();
        QVERIFY(!window);
    }

    void twentyOpeningsLeaveNothingBehind() {
        for (int i = 0; i < 20; ++i) {
            open();
            for (const Section section : allCases<Section>())
                go(section);
            m_preferences->window()->close();
            QTRY_VERIFY_WITH_TIMEOUT(isClosed(), limitMs);
        }
        QCOMPARE(QApplication::topLevelWidgets().size(), 0);
        m_user->settings->menuDot = false; // Nobody who is gone is told.
        m_user->store->snapshot = PreferencesFixture::snapshot();
    }
};

QTEST_MAIN(PreferencesWindowTest)
#include "PreferencesWindowTest.moc"
