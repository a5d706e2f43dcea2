#include "TorvaneUpdates/Updater.h"

#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QTest>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

/// What is seen of its checks.
class UpdaterTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<UpdateRig>(); }
    void cleanup() { m_rig.reset(); }

    void withoutAUsableKeyNothingCanEverBeChecked_data() {
        QTest::addColumn<QString>("key");
        QTest::newRow("none") << QString();
        QTest::newRow("no base64") << u"not a key at all!"_s;
        QTest::newRow("too short") << QString::fromLatin1(QByteArray(31, 'k').toBase64());
        QTest::newRow("a point of small order") << QString::fromLatin1(QByteArray(32, '\0').toBase64());
    }

    void withoutAUsableKeyNothingCanEverBeChecked() {
        QFETCH(QString, key);
        Properties properties = m_rig->properties();
        properties.publicKey = key;
        m_rig->publishNew();
        m_rig->start(properties);
        UpdateRig::turnTheLoop();
        m_rig->updater->checkForUpdates();
        m_rig->updater->catchUp();
        m_rig->updater->setAutomaticallyChecksForUpdates(true);
        UpdateRig::turnTheLoop();
        QVERIFY(!m_rig->updater->canCheckForUpdates);
        QCOMPARE(m_rig->download.documents, 0);
        QCOMPARE(m_rig->windows.scenes, QStringList());
    }

    void aCheckThatNobodyAskedForIsSilentUnlessItFindsSomething_data() {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QString>("version");
        QTest::addColumn<QStringList>("scenes");
        QTest::newRow("no feed") << QByteArray() << QString() << QStringList();
        QTest::newRow("the same version") << UpdateRig::sample("old") << u"1.0.0"_s << QStringList();
        QTest::newRow("an older version") << UpdateRig::sample("old") << u"0.9"_s << QStringList();
        QTest::newRow("a newer version") << UpdateRig::sample("new") << u"2.0"_s << QStringList{u"found"_s};
    }

    void aCheckThatNobodyAskedForIsSilentUnlessItFindsSomething() {
        QFETCH(QString, version);
        QFETCH(QByteArray, payload);
        if (!version.isEmpty())
            m_rig->publish({{.version = version, .payload = payload}});
        m_rig->start();
        m_rig->waitForDocuments(1);
        QVERIFY(QTest::qWaitFor([&] { return m_rig->updater->canCheckForUpdates || !m_rig->windows.scenes.isEmpty(); },
                                UpdateRig::patience));
        QTEST(m_rig->windows.scenes, "scenes");
    }

    void aCheckByHandShowsAllOfIt() {
        quiet();
        m_rig->publish({{.version = u"1.0"_s, .payload = UpdateRig::sample("old")}});
        m_rig->updater->checkForUpdates();
        QCOMPARE(m_rig->windows.kind(), u"checking"_s);
        QVERIFY(!m_rig->updater->canCheckForUpdates);
        m_rig->waitForScene(u"up to date"_s);
        QCOMPARE(std::get<UpToDate>(*m_rig->windows.last).currentVersion, u"1.0"_s);
        UpdateRig::turnTheLoop();
        QVERIFY(!m_rig->updater->canCheckForUpdates);
        m_rig->windows.give(Answer::close);
        m_rig->waitUntilReady();
        QCOMPARE(m_rig->windows.scenes.last(), u"closed"_s);
    }

    void aCheckByHandThatFailsSaysWhy() {
        quiet();
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"failed"_s);
        QVERIFY(m_rig->windows.cause().startsWith(u"The server does not know"_s));
        m_rig->windows.give(Answer::close);
        m_rig->waitUntilReady();
    }

    void aBrokenFeedFailsAsAWhole() {
        quiet();
        m_rig->publishNew();
        m_rig->download.bodies[m_rig->properties().feed].chop(10);
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"failed"_s);
    }

    void askingAgainBringsTheWindowToTheFront() {
        quiet();
        m_rig->publishNew();
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"found"_s);
        m_rig->windows.scenes.clear();
        m_rig->updater->checkForUpdates();
        QCOMPARE(m_rig->windows.scenes, QStringList{u"front"_s});
        QCOMPARE(m_rig->download.documents, 1);
    }

    void askingDuringASilentCheckShowsThatOne() {
        m_rig->publish({{.version = u"1.0"_s, .payload = UpdateRig::sample("old")}});
        m_rig->download.isHeld = true;
        m_rig->start();
        m_rig->waitForDocuments(1);
        m_rig->updater->checkForUpdates();
        QCOMPARE(m_rig->windows.kind(), u"checking"_s);
        m_rig->download.isHeld = false;
        m_rig->waitForScene(u"up to date"_s);
        QCOMPARE(m_rig->download.documents, 1);
    }

    void aCheckThatIsCancelledCanBeMadeAgain() {
        quiet();
        m_rig->publishNew();
        m_rig->download.isHeld = true;
        m_rig->updater->checkForUpdates();
        m_rig->windows.give(Answer::cancel);
        m_rig->waitUntilReady();
        QCOMPARE(m_rig->windows.scenes.last(), u"closed"_s);
        m_rig->download.isHeld = false;
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"found"_s);
    }

    void whatIsFoundIsToldAsTheFeedHasIt() {
        quiet();
        const QByteArray payload = UpdateRig::sample("new");
        m_rig->publish({{.payload = payload,
                         .more = u"<sparkle:shortVersionString>Two</sparkle:shortVersionString>"
                                 u"<description>All is better.</description>"
                                 u"<sparkle:releaseNotesLink>https://example.org/two</sparkle:releaseNotesLink>"_s}});
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"found"_s);
        const Offer& offer = m_rig->windows.offer();
        QCOMPARE(offer.version, u"Two"_s);
        QCOMPARE(offer.currentVersion, u"1.0"_s);
        QCOMPARE(offer.notes, u"All is better."_s);
        QCOMPARE(offer.notesLink, QUrl(u"https://example.org/two"_s));
        QCOMPARE(offer.length, payload.size());
        QVERIFY(!offer.isCritical);
        QCOMPARE(offer.obstacle, QString());
    }

    void aSkippedVersionIsOfferedByHandAloneAndANewerOneByItself() {
        m_rig->publishNew();
        m_rig->windows.answers = {{u"found"_s, Answer::skip}};
        checkAgain(0);
        QCOMPARE(m_rig->windows.scenes, (QStringList{u"found"_s, u"closed"_s}));
        checkAgain(24);
        QCOMPARE(m_rig->windows.scenes, (QStringList{u"found"_s, u"closed"_s}));
        m_rig->windows.answers = {{u"found"_s, Answer::later}};
        m_rig->windows.scenes.clear();
        m_rig->updater->checkForUpdates();
        m_rig->waitUntilReady();
        QVERIFY(m_rig->windows.scenes.contains(u"found"_s));
        m_rig->publish({{.version = u"3.0"_s, .payload = UpdateRig::sample("newer")}});
        m_rig->windows.scenes.clear();
        checkAgain(72);
        QCOMPARE(m_rig->windows.scenes, (QStringList{u"found"_s, u"closed"_s}));
    }

    void aVersionForLaterIsOfferedAgainTheNextDay() {
        m_rig->publishNew();
        m_rig->windows.answers = {{u"found"_s, Answer::later}};
        checkAgain(0);
        checkAgain(24);
        QCOMPARE(m_rig->windows.scenes.count(u"found"_s), 2);
    }

    void aCriticalVersionCannotBeSkipped() {
        m_rig->publish({{.payload = UpdateRig::sample("new"), .more = u"<sparkle:criticalUpdate/>"_s}});
        m_rig->windows.answers = {{u"found"_s, Answer::skip}};
        checkAgain(0);
        QCOMPARE(m_rig->windows.scenes.count(u"found"_s), 1);
        checkAgain(24);
        QCOMPARE(m_rig->windows.scenes.count(u"found"_s), 2);
    }

    void aWindowThatStoodOpenForDaysIsNotFollowedByTheSameAtOnce() {
        m_rig->publishNew();
        m_rig->start();
        m_rig->waitForScene(u"found"_s);
        UpdateRig::setHoursAfterNoon(72);
        m_rig->updater->catchUp();
        m_rig->windows.give(Answer::later);
        m_rig->waitUntilReady();
        m_rig->updater->catchUp();
        UpdateRig::turnTheLoop();
        QCOMPARE(m_rig->download.documents, 1);
    }

    void anItemThatOnlyInformsHasALinkAndNothingToInstall() {
        m_rig->publish({{.more = u"<sparkle:informationalUpdate/><link>https://example.org/big-news</link>"_s}});
        m_rig->windows.answers = {{u"found"_s, Answer::close}};
        checkAgain(0);
        QCOMPARE(m_rig->windows.scenes, (QStringList{u"found"_s, u"closed"_s}));
        checkAgain(24);
        QCOMPARE(m_rig->windows.scenes.count(u"found"_s), 1);
        m_rig->windows.answers.clear();
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"found"_s);
        QCOMPARE(m_rig->windows.offer().notesLink, QUrl(u"https://example.org/big-news"_s));
        QVERIFY(m_rig->windows.offer().obstacle.contains(u"cannot be installed from here"_s));
        m_rig->windows.give(Answer::install);
        m_rig->waitUntilReady();
        QCOMPARE(m_rig->download.files, 0);
    }

    void aVersionHeldBackForOthersFirstIsThereByHand() {
        m_rig->start();
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->waitUntilReady();
        m_rig->defaults().set(u"updateRollout"_s, qint64{999'999});
        m_rig->publish({{.payload = UpdateRig::sample("new"),
                         .more = u"<sparkle:phasedRolloutInterval>86400</sparkle:phasedRolloutInterval>"
                                 u"<pubDate>Thu, 14 May 2026 11:00:00 +0000</pubDate>"_s}});
        m_rig->updater->setAutomaticallyChecksForUpdates(true);
        m_rig->waitForDocuments(1);
        m_rig->waitUntilReady();
        QCOMPARE(m_rig->windows.scenes, QStringList());
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"found"_s);
    }

    void progressIsShownInStepsThatCanBeSeen() {
        quiet();
        const QByteArray payload = UpdateRig::sample("new") + QByteArray(100'000, '\0');
        m_rig->publish({{.payload = payload}});
        m_rig->download.pieces = 300;
        m_rig->installByHand();
        QCOMPARE(m_rig->windows.kind(), u"installing"_s);
        const QList<qint64>& progress = m_rig->windows.progress;
        QVERIFY(progress.size() > 50 && progress.size() <= 201);
        QVERIFY(std::ranges::is_sorted(progress));
        QCOMPARE(progress.last(), payload.size());
        QCOMPARE(m_rig->replaced, 1);
    }

    void aWindowIsAnsweredOnce() {
        quiet();
        m_rig->publishNew();
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"found"_s);
        m_rig->windows.give(Answer::later);
        m_rig->windows.give(Answer::install); // Too late: one answer per scene.
        m_rig->waitUntilReady();
        QCOMPARE(m_rig->download.files, 0);
    }

private:
    /// Started, and it checks only by hand.
    void quiet() const {
        m_rig->start();
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->waitUntilReady();
    }

    /// A new run so many hours after noon, until its check has ended.
    void checkAgain(int hours) const {
        UpdateRig::setHoursAfterNoon(hours);
        const int before = m_rig->download.documents;
        m_rig->start();
        m_rig->waitForDocuments(before + 1);
        m_rig->waitUntilReady();
    }

    std::unique_ptr<UpdateRig> m_rig;
};

QTEST_GUILESS_MAIN(UpdaterTest)
#include "UpdaterTest.moc"
