#include "TorvaneUpdates/UpdateWorker.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QFile>
#include <QTest>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

/// What may happen from outside in each state of an update.
class EachStateTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_rig = std::make_unique<UpdateRig>();
        m_rig->publishNew();
    }
    void cleanup() { m_rig.reset(); }

    void theSwitchAndTheClockDisturbNothingThatIsSeen_data() { states(); }

    /// Neither is a second check begun, nor is the one that is seen taken away.
    void theSwitchAndTheClockDisturbNothingThatIsSeen() {
        reach();
        for (const int hours : {100, -100, 24 * 365 * 30, 0}) {
            UpdateRig::setHoursAfterNoon(hours);
            m_rig->updater->catchUp();
            m_rig->updater->setAutomaticallyChecksForUpdates(hours != 100);
            UpdateRig::turnTheLoop();
        }
        QFETCH(QString, state);
        QCOMPARE(m_rig->windows.kind(), state);
        QCOMPARE(m_rig->download.documents, 1);
        QVERIFY(!m_rig->updater->canCheckForUpdates);
    }

    void aSecondQuestionBringsTheWindowToTheFront_data() { states(); }

    void aSecondQuestionBringsTheWindowToTheFront() {
        reach();
        const auto earlier = m_rig->windows.scenes.count(u"front"_s);
        m_rig->updater->checkForUpdates();
        UpdateRig::turnTheLoop(); // In which a download may go on, and say so.
        QFETCH(QString, state);
        QCOMPARE(m_rig->windows.scenes.count(u"front"_s), earlier + 1);
        QCOMPARE(m_rig->windows.kind(), state);
        QCOMPARE(m_rig->download.documents, 1);
    }

    void theEndOfTheProgramLeavesItAsItWas_data() { states(); }

    void theEndOfTheProgramLeavesItAsItWas() {
        reach();
        m_rig->updater.reset();
        updateWorker().waitForDone();
        QCOMPARE(m_rig->windows.kind(), QString());
        m_rig->relaunchHangs = false;
        m_rig->download.isHeld = false;
        m_rig->download.afterPiece = nullptr;
        m_rig->publishNew();
        m_rig->start();
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->waitUntilReady();
        m_rig->installByHand();
        QCOMPARE(m_rig->replaced, 1);
    }

    /// The clock is wrong, then set right: one check for each day that has passed, and none too few.
    void aClockThatJumpsBothWaysCostsNoChecks() {
        m_rig->download.bodies.clear();
        m_rig->start();
        QVERIFY(hasAsked(1));
        m_rig->waitUntilReady();
        UpdateRig::setHoursAfterNoon(24 * 365 * 30);
        m_rig->updater->catchUp();
        QVERIFY(hasAsked(2));
        m_rig->waitUntilReady();
        UpdateRig::setHoursAfterNoon(1);
        m_rig->updater->catchUp();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 2);
        UpdateRig::setHoursAfterNoon(25);
        m_rig->updater->catchUp();
        QVERIFY(hasAsked(3));
    }

    /// Sleep or a clock that is set within the first seconds is no reason to hurry.
    void theCheckAtTheStartKeepsItsMoment() {
        Properties properties = m_rig->properties();
        properties.settling = std::chrono::hours(1);
        m_rig->start(properties);
        m_rig->waitUntilReady();
        m_rig->updater->catchUp();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 0);
    }

    /// It may be withdrawn and published again as one like others.
    void aCriticalVersionIsNeverRememberedAsSkipped() {
        m_rig->publish({{.payload = UpdateRig::sample("new"), .more = u"<sparkle:criticalUpdate/>"_s}});
        m_rig->windows.answers = {{u"found"_s, Answer::skip}};
        m_rig->start();
        m_rig->waitUntilReady();
        QVERIFY(QTest::qWaitFor([this] { return m_rig->windows.scenes.contains(u"closed"_s); }, UpdateRig::patience));
        QVERIFY(!m_rig->defaults().string(u"skippedUpdate"_s));
    }

    /// A crash may have left it there, and the folder's lock may have kept the start from removing it.
    void aKeptFileOfAnEarlierTimeIsNotInTheWay() {
        m_rig->start();
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->waitUntilReady();
        QVERIFY(QFile::copy(m_rig->program(), m_rig->programFolder() + u"/.velisk.previous"_s));
        m_rig->installByHand();
        QCOMPARE(m_rig->replaced, 1);
        QVERIFY(!QFile::exists(m_rig->programFolder() + u"/.velisk.previous"_s));
    }

private:
    static void states() {
        QTest::addColumn<QString>("state");
        for (const char* state : {"checking", "found", "downloading", "verifying", "ready", "installing", "failed"})
            QTest::newRow(state) << QString::fromLatin1(state);
    }

    bool hasAsked(int times) const {
        return QTest::qWaitFor([&] { return m_rig->download.documents >= times; }, 120'000);
    }

    /// Goes on by hand as far as the row says, and stays there.
    void reach() {
        QFETCH(QString, state);
        m_rig->start();
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->waitUntilReady();
        m_rig->relaunchHangs = true;
        if (state == u"failed"_s)
            m_rig->download.bodies.clear();
        if (state == u"verifying"_s)
            m_rig->publish({{.payload = UpdateRig::sample("hanging")}});
        if (state != u"found"_s)
            m_rig->windows.answers.insert(u"found"_s, Answer::install);
        if (state == u"installing"_s)
            m_rig->windows.answers.insert(u"ready"_s, Answer::install);
        m_rig->download.isHeld = state == u"checking"_s;
        if (state == u"downloading"_s)
            m_rig->download.afterPiece = [this] { m_rig->download.isHeld = true; };
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(state);
        if (state == u"installing"_s)
            QVERIFY(QTest::qWaitFor([this] { return !m_rig->relaunched.isEmpty(); }, UpdateRig::patience));
    }

    std::unique_ptr<UpdateRig> m_rig;
};

QTEST_GUILESS_MAIN(EachStateTest)
#include "EachStateTest.moc"
