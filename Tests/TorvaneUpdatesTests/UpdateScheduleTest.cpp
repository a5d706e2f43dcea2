#include "Support/TestFiles.h"
#include "TorvaneUpdates/Updater.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QTest>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

namespace {

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
        m_rig->waitForDocuments(1);
        QCOMPARE(lastCheck(*m_rig), noonText);
        QVERIFY(!m_rig->updater->canCheckForUpdates);
    }

    void withinADayOfTheLastCheckNoneIsMade() {
        endACheck();
        UpdateRig::setHoursAfterNoon(23);
        m_rig->start();
        m_rig->waitUntilReady();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
        QCOMPARE(lastCheck(*m_rig), noonText);
    }

    void anOverdueCheckIsMadeAtTheStart() {
        endACheck();
        UpdateRig::setHoursAfterNoon(24);
        m_rig->start();
        m_rig->waitForDocuments(2);
    }

    void aMachineThatSleptOverACheckMakesItWhenItWakes() {
        endACheck();
        UpdateRig::setHoursAfterNoon(23);
        m_rig->updater->catchUp();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
        UpdateRig::setHoursAfterNoon(25);
        m_rig->updater->catchUp();
        m_rig->waitForDocuments(2);
    }

    void aMachineThatWakesGivesItsNetworkTimeToComeUp() {
        endACheck();
        Properties properties = m_rig->properties();
        properties.settling = std::chrono::hours(1);
        m_rig->start(properties);
        m_rig->waitUntilReady();
        UpdateRig::setHoursAfterNoon(25);
        m_rig->updater->catchUp();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
        QCOMPARE(lastCheck(*m_rig), noonText); // Kept when a check begins, not before.
        properties.settling = std::chrono::seconds(1);
        UpdateRig::setHoursAfterNoon(23);
        m_rig->start(properties);
        m_rig->waitUntilReady();
        UpdateRig::setHoursAfterNoon(25);
        m_rig->updater->catchUp();
        m_rig->waitForDocuments(2);
    }

    void aCheckWithoutANetworkIsMadeOnceMoreByTheNextOne() {
        endACheck(); // There is no feed yet.
        m_rig->updater->tryAgain();
        m_rig->waitForDocuments(2);
        m_rig->waitUntilReady();
        m_rig->updater->tryAgain();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 2);
        UpdateRig::setHoursAfterNoon(24);
        m_rig->updater->catchUp();
        m_rig->waitForDocuments(3);
        m_rig->waitUntilReady();
        m_rig->updater->tryAgain();
        m_rig->waitForDocuments(4);
    }

    void aCheckThatFailsAfterTheNetworkCameIsMadeOnceMoreToo() {
        m_rig->download.isHeld = true;
        m_rig->start();
        m_rig->waitForDocuments(1);
        m_rig->updater->tryAgain();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
        m_rig->download.isHeld = false;
        m_rig->waitForDocuments(2);
        m_rig->waitUntilReady();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 2);
    }

    void aCheckThatReachedItsServerIsNotRepeated() {
        m_rig->publish({});
        endACheck();
        m_rig->updater->tryAgain();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
    }

    void switchedOffNothingIsRepeated() {
        endACheck();
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->updater->tryAgain();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
    }

    void whoWasToldOfAFailureIsNotAskedAgain() {
        m_rig->start();
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->waitUntilReady();
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"failed"_s);
        m_rig->windows.give(Answer::close);
        m_rig->waitUntilReady();
        m_rig->updater->setAutomaticallyChecksForUpdates(true);
        m_rig->updater->tryAgain();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
    }

    void theNextCheckComesByItself() {
        Properties properties = m_rig->properties();
        properties.interval = std::chrono::seconds(2);
        m_rig->start(properties);
        m_rig->waitForDocuments(1);
        m_rig->waitUntilReady();
        UpdateRig::setHoursAfterNoon(1);
        m_rig->waitForDocuments(2);
    }

    void aLastCheckInTheFutureCountsAsNow() {
        UpdateRig::setHoursAfterNoon(24 * 365);
        endACheck();
        UpdateRig::setTime(UpdateRig::noon());
        m_rig->start();
        m_rig->waitUntilReady();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
        QCOMPARE(lastCheck(*m_rig), noonText);
        UpdateRig::setHoursAfterNoon(24);
        m_rig->updater->catchUp();
        m_rig->waitForDocuments(2);
    }

    void aLastCheckThatCannotBeReadCountsAsNone() {
        TestFiles::put(m_rig->folder() + u"/preferences.json"_s, R"({"lastUpdateCheck": "yesterday"})");
        m_rig->start();
        m_rig->waitForDocuments(1);
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
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 0);
        m_rig->updater->setAutomaticallyChecksForUpdates(true);
        m_rig->waitForDocuments(1);
    }

    void switchingOffEndsACheckThatNobodyHasSeen() {
        m_rig->publishNew();
        m_rig->download.isHeld = true;
        m_rig->start();
        m_rig->waitForDocuments(1);
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        QVERIFY(m_rig->updater->canCheckForUpdates);
        m_rig->download.isHeld = false;
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->windows.scenes, QStringList());
    }

private:
    void endACheck() const {
        m_rig->start();
        m_rig->waitForDocuments(1);
        m_rig->waitUntilReady();
    }

    std::unique_ptr<UpdateRig> m_rig;
};

QTEST_GUILESS_MAIN(UpdateScheduleTest)
#include "UpdateScheduleTest.moc"
