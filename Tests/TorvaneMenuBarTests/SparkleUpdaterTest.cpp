#include "SparkleUpdater.h"

#include "Support/Clock.h"
#include "Support/TemporaryHome.h"
#include "Support/Worker.h"

#include <QApplication>
#include <QTest>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30'000;

/// The public key of RFC 8032's first test.
QString someKey() {
    return QString::fromLatin1(
        QByteArray::fromHex("d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a").toBase64());
}

/// A network on which nothing ever arrives.
class SilentDownload final : public Updates::Download {
public:
    int documents = 0;

    Task<QByteArray> document(QUrl, qsizetype) override {
        ++documents;
        std::suspend_always noEnd;
        co_await noEnd;
        co_return {};
    }

    Task<> file(Updates::FileRequest) override { co_return; }
};

Task<bool> failToRelaunch(QString) {
    co_return false;
}

} // namespace

class SparkleUpdaterTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<UserDefaults> m_defaults;
    SilentDownload m_download;
    std::unique_ptr<SparkleUpdater> m_bridge;

    /// As a new start of the program: everything is read anew.
    void start(const QString& key = someKey(), std::chrono::seconds settling = std::chrono::hours(1)) {
        stop();
        m_defaults = std::make_unique<UserDefaults>(m_home->filePath(u"preferences.json"_s), m_home->path());
        const Updates::Properties properties{
            .feed = QUrl(u"https://localhost:1/torvane/appcast.xml"_s),
            .publicKey = key,
            .product = u"org.velisk.Torvane.Test"_s,
            .version = u"0.3.0"_s,
            .executable = m_home->filePath(u"velisk"_s),
            .settling = settling,
        };
        m_bridge = std::make_unique<SparkleUpdater>(properties, *m_defaults, m_download, failToRelaunch);
    }

    void stop() {
        m_bridge.reset();
        m_defaults.reset();
        worker().waitForDone();
    }

    UpdaterState& state() const { return m_bridge->state(); }

    void waitUntilItCanCheck() const { QTRY_VERIFY_WITH_TIMEOUT(state().canCheck, limitMs); }

    static QWidget* updateWindow() {
        for (QWidget* each : QApplication::topLevelWidgets()) {
            if (each->isVisible())
                return each;
        }
        return nullptr;
    }

private Q_SLOTS:
    void initTestCase() { QApplication::setQuitOnLastWindowClosed(false); }

    void init() {
        m_home = std::make_unique<TemporaryHome>();
        m_download.documents = 0;
    }

    void cleanup() {
        stop();
        Clock::setSource(nullptr);
    }

    void canCheckIsFalseUntilTheMainLoopRuns() {
        start();
        QVERIFY(!state().canCheck);
        waitUntilItCanCheck();
    }

    void canCheckMirrorsTheUpdater() {
        start();
        waitUntilItCanCheck();
        state().check();
        QTRY_VERIFY_WITH_TIMEOUT(!state().canCheck, limitMs);
        QCOMPARE(m_download.documents, 1);
        QVERIFY(QTest::qWaitForWindowActive(updateWindow(), limitMs));
        QTest::keyClick(updateWindow()->windowHandle(), Qt::Key_Escape);
        waitUntilItCanCheck();
        QTRY_VERIFY_WITH_TIMEOUT(!updateWindow(), limitMs);
    }

    void aCheckByHandIsToldBeforeItsWindowComes() {
        start();
        waitUntilItCanCheck();
        QList<bool> hadWindow;
        connect(m_bridge.get(), &SparkleUpdater::aboutToCheck, this,
                [&hadWindow] { hadWindow.append(updateWindow() != nullptr); });
        state().check();
        QTRY_VERIFY_WITH_TIMEOUT(updateWindow(), limitMs);
        QCOMPARE(hadWindow, QList<bool>{false});
        state().check(); // For a window that is open already, too.
        QCOMPARE(hadWindow, (QList<bool>{false, true}));
        stop();
    }

    void observersHearOfEachChangeOnce() {
        start();
        QList<bool> heard;
        state().canCheck.observe(this, [&heard](bool next) { heard.append(next); });
        waitUntilItCanCheck();
        state().check();
        QTRY_VERIFY_WITH_TIMEOUT(!state().canCheck, limitMs);
        QCOMPARE(heard, (QList{false, true, false}));
        disconnect(&state(), nullptr, this, nullptr);
        stop();
    }

    void checkWhileItCannotIsPassedOnAnyway() {
        start();
        waitUntilItCanCheck();
        state().check();
        QTRY_VERIFY_WITH_TIMEOUT(!state().canCheck, limitMs);
        QWidget* const window = updateWindow();
        window->setWindowState(Qt::WindowMinimized);
        state().check();
        QTRY_VERIFY_WITH_TIMEOUT(!window->isMinimized(), limitMs);
        QCOMPARE(updateWindow(), window);
        QCOMPARE(m_download.documents, 1);
    }

    void checkBeforeTheFirstTurnOfTheLoopDoesNoHarm() {
        start();
        state().check();
        waitUntilItCanCheck();
        QVERIFY(!updateWindow());
    }

    void itChecksByItselfUnlessItIsToldOtherwise() {
        start();
        QVERIFY(state().automaticChecks);
    }

    void noAutomaticChecksAreKeptOverARestart() {
        start();
        state().setAutomatic(false);
        QVERIFY(!state().automaticChecks);
        start();
        QVERIFY(!state().automaticChecks);
        state().setAutomatic(true);
        start();
        QVERIFY(state().automaticChecks);
    }

    void aStateWithoutABridgeDoesNothing() {
        UpdaterState alone;
        QVERIFY(!alone.canCheck);
        QVERIFY(alone.automaticChecks);
        alone.check();
        alone.setAutomatic(false);
        QVERIFY(!alone.automaticChecks);
        QVERIFY(!alone.canCheck);
    }

    void withoutAUsableKeyNothingCanEverBeChecked_data() {
        QTest::addColumn<QString>("key");
        QTest::newRow("none") << QString();
        QTest::newRow("no base64") << u"!!"_s;
        QTest::newRow("too short") << u"AAAA"_s;
    }

    void withoutAUsableKeyNothingCanEverBeChecked() {
        QFETCH(const QString, key);
        start(key);
        worker().waitForDone();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        QVERIFY(!state().canCheck);
        state().check();
        m_bridge->catchUp();
        QCoreApplication::processEvents();
        QCOMPARE(m_download.documents, 0);
        QVERIFY(!updateWindow());
    }

    void aCheckThatWasSleptThroughIsMadeUp() {
        start();
        waitUntilItCanCheck();
        state().check(); // From now on the next one is due in a day.
        QTRY_VERIFY_WITH_TIMEOUT(updateWindow(), limitMs);
        QTest::keyClick(updateWindow()->windowHandle(), Qt::Key_Escape);
        waitUntilItCanCheck();
        QTRY_VERIFY_WITH_TIMEOUT(!updateWindow(), limitMs);
        start(someKey(), std::chrono::seconds(0));
        waitUntilItCanCheck();
        m_bridge->catchUp();
        QCoreApplication::processEvents();
        QCOMPARE(m_download.documents, 1);
        Clock::setSource([] { return QDateTime::currentDateTimeUtc().addDays(2); });
        m_bridge->catchUp();
        QTRY_COMPARE_WITH_TIMEOUT(m_download.documents, 2, limitMs);
        QTRY_VERIFY_WITH_TIMEOUT(!state().canCheck, limitMs);
        QVERIFY(!updateWindow());
    }

    void itMayGoWithACheckUnderWay() {
        start();
        waitUntilItCanCheck();
        state().check();
        QTRY_VERIFY_WITH_TIMEOUT(!state().canCheck, limitMs);
        stop();
        QVERIFY(!updateWindow());
    }
};

QTEST_MAIN(SparkleUpdaterTest)
#include "SparkleUpdaterTest.moc"
