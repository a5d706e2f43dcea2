#include "Support/TestFiles.h"
#include "TorvaneUpdates/Updater.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QTest>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 120'000;

QDateTime hoursLater(int hours) {
    return UpdateRig::noon().addSecs(qint64{hours} * 3600);
}

QString lastCheck(UpdateRig& rig) {
    return rig.defaults().string(u"lastUpdateCheck"_s).value_or(QString());
}

const QString noonText = u"2026-05-14T12:00:00Z"_s;

} // namespace

/// When it checks by itself.
class UpdateScheduleTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<UpdateRig>(); }
    void cleanup() { m_rig.reset(); }

    void theFirstStartChecksAndRemembersThatBeforeAnythingIsAnswered() {
        m_rig->download.isHeld = true;
        m_rig->start();
        waitForDocuments(1);
        QCOMPARE(lastCheck(*m_rig), noonText);
        QVERIFY(!m_rig->updater->canCheckForUpdates);
    }

    void withinADayOfTheLastCheckNoneIsMade() {
        endACheck();
        UpdateRig::setTime(hoursLater(23));
        m_rig->start();
        m_rig->waitUntilReady();
        turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
        QCOMPARE(lastCheck(*m_rig), noonText);
    }

    void anOverdueCheckIsMadeAtTheStart() {
        endACheck();
        UpdateRig::setTime(hoursLater(24));
        m_rig->start();
        waitForDocuments(2);
    }

    void aMachineThatSleptOverACheckMakesItWhenItWakes() {
        endACheck();
        UpdateRig::setTime(hoursLater(23));
        m_rig->updater->catchUp();
        turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
        UpdateRig::setTime(hoursLater(25));
        m_rig->updater->catchUp();
        waitForDocuments(2);
    }

    void theNextCheckComesByItself() {
        Properties properties = m_rig->properties();
        properties.interval = std::chrono::seconds(2);
        m_rig->start(properties);
        waitForDocuments(1);
        m_rig->waitUntilReady();
        UpdateRig::setTime(hoursLater(1));
        waitForDocuments(2);
    }

    void aLastCheckInTheFutureCountsAsNow() {
        UpdateRig::setTime(hoursLater(24 * 365));
        endACheck();
        UpdateRig::setTime(UpdateRig::noon());
        m_rig->start();
        m_rig->waitUntilReady();
        turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
        QCOMPARE(lastCheck(*m_rig), noonText);
        UpdateRig::setTime(hoursLater(24));
        m_rig->updater->catchUp();
        waitForDocuments(2);
    }

    void aLastCheckThatCannotBeReadCountsAsNone() {
        TestFiles::put(m_rig->folder() + u"/preferences.json"_s, R"({"lastUpdateCheck": "yesterday"})");
        m_rig->start();
        waitForDocuments(1);
    }

    void switchedOffItChecksOnlyWhenAskedAndStaysSoInTheNextRun() {
        m_rig->start();
        QVERIFY(m_rig->updater->automaticallyChecksForUpdates());
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->waitUntilReady();
        m_rig->start();
        QVERIFY(!m_rig->updater->automaticallyChecksForUpdates());
        m_rig->waitUntilReady();
        m_rig->updater->catchUp();
        turnTheLoop();
        QCOMPARE(m_rig->download.documents, 0);
        m_rig->updater->setAutomaticallyChecksForUpdates(true);
        waitForDocuments(1);
    }

    void switchingOffEndsACheckThatNobodyHasSeen() {
        m_rig->publishNew();
        m_rig->download.isHeld = true;
        m_rig->start();
        waitForDocuments(1);
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        QVERIFY(m_rig->updater->canCheckForUpdates);
        m_rig->download.isHeld = false;
        turnTheLoop();
        QCOMPARE(m_rig->windows.scenes, QStringList());
    }

private:
    /// Lets everything happen that would happen of itself.
    static void turnTheLoop() {
        for (int turn = 0; turn < 50; ++turn) {
            worker().waitForDone();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    void waitForDocuments(int count) const {
        QVERIFY(QTest::qWaitFor([&] { return m_rig->download.documents >= count; }, patience));
    }

    void endACheck() const {
        m_rig->start();
        waitForDocuments(1);
        m_rig->waitUntilReady();
    }

    std::unique_ptr<UpdateRig> m_rig;
};

QTEST_GUILESS_MAIN(UpdateScheduleTest)
#include "UpdateScheduleTest.moc"
