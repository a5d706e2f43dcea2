#include "Support/FileIdentity.h"
#include "Support/TestFiles.h"
#include "TorvaneUpdates/UpdateFailure.h"
#include "TorvaneUpdates/UpdateLock.h"
#include "TorvaneUpdates/UpdateWorker.h"
#include "TorvaneUpdatesTests/UpdateRig.h"

#include <QFile>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;
using TestFiles::contentOf;
using TestFiles::entriesOf;

namespace {

const QStringList programAlone{u"velisk"_s};

mode_t modeOf(const QString& path) {
    struct stat status {};
    return ::stat(QFile::encodeName(path), &status) == 0 ? status.st_mode & 07777 : 0;
}

std::optional<FileIdentity> identityOf(const QString& path) {
    return FileIdentity::of(QFile::encodeName(path).constData());
}

QByteArray altered(QByteArray bytes) {
    bytes[bytes.size() / 2] = static_cast<char>(bytes.at(bytes.size() / 2) ^ 1);
    return bytes;
}

} // namespace

/// What becomes of the program's file.
class InstallationTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_rig = std::make_unique<UpdateRig>();
        m_rig->publishNew();
        m_rig->start();
        m_rig->updater->setAutomaticallyChecksForUpdates(false);
        m_rig->waitUntilReady();
    }

    void cleanup() { m_rig.reset(); }

    void anUpdateReplacesTheProgramAndLeavesNothingElse() {
        m_rig->installByHand();
        QCOMPARE(m_rig->windows.scenes, (QStringList{u"checking"_s, u"front"_s, u"found"_s, u"downloading"_s,
                                                     u"verifying"_s, u"ready"_s, u"installing"_s}));
        QCOMPARE(m_rig->replaced, 1);
        QCOMPARE(m_rig->relaunched, QStringList{m_rig->program()});
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("new"));
        QCOMPARE(modeOf(m_rig->program()), mode_t{0750});
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
        QVERIFY(!m_rig->updater->canCheckForUpdates);
    }

    void whileItIsDownloadedNobodyElseCanReadOrRunIt() {
        m_rig->windows.answers = {{u"found"_s, Answer::install}};
        m_rig->download.afterPiece = [this] { m_rig->download.isHeld = true; };
        m_rig->updater->checkForUpdates();
        QVERIFY(QTest::qWaitFor([this] { return m_rig->download.isHeld; }, 60'000));
        QCOMPARE(modeOf(temporaryFile()), mode_t{0600});
    }

    void aLinkToTheProgramStaysALink() {
        const QString link = m_rig->folder() + u"/link"_s;
        QVERIFY(QFile::link(m_rig->program(), link));
        Properties properties = m_rig->properties();
        properties.executable = link;
        m_rig->start(properties);
        m_rig->waitUntilReady();
        m_rig->installByHand();
        QCOMPARE(m_rig->relaunched, QStringList{m_rig->program()});
        QCOMPARE(QFile::symLinkTarget(link), m_rig->program());
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("new"));
    }

    void whatIsNotThePromisedProgramIsRefused_data() {
        QTest::addColumn<FeedItem>("item");
        QTest::addColumn<QByteArray>("served");
        QTest::addColumn<QString>("cause");
        const QByteArray good = UpdateRig::sample("new");
        const QByteArray sign = m_rigForData.sign(good);
        const auto row = [](const char* name, const FeedItem& item, const QByteArray& served, const QString& cause) {
            QTest::newRow(name) << item << served << cause;
        };
        const QString unsignedText = u"sign"_s;
        row("a signature of something else", {.payload = good, .signature = m_rigForData.sign("x")}, good,
            unsignedText);
        row("a signature by another key", {.payload = good, .signature = QByteArray(64, 'a')}, good, unsignedText);
        row("an altered byte", {.payload = good, .signature = sign}, altered(good), unsignedText);
        row("bytes behind it", {.payload = good + "more", .signature = sign}, good + "more", unsignedText);
        row("its end cut off", {.payload = good.chopped(1), .signature = sign}, good.chopped(1), unsignedText);
        row("shorter than promised", {.payload = good, .signature = sign}, good.chopped(1), u"not as long"_s);
        row("longer than promised", {.payload = good, .signature = sign}, good + "more", u"not as long"_s);
        const std::array signedOnes{
            std::tuple{"other-product", u"product"_s},         std::tuple{"other-version", u"version"_s},
            std::tuple{"other-machine", u"kind of machine"_s}, std::tuple{"misnamed", u"calls itself another"_s},
            std::tuple{"crashing", u"does not run on this"_s}, std::tuple{"failing", u"does not run on this"_s},
        };
        for (const auto& [name, cause] : signedOnes)
            row(name, {.payload = UpdateRig::sample(name)}, UpdateRig::sample(name), cause);
        row("no program", {.payload = "#!/bin/sh\necho velisk 2.0\n"}, "#!/bin/sh\necho velisk 2.0\n",
            u"not a version"_s);
    }

    void whatIsNotThePromisedProgramIsRefused() {
        QFETCH(FeedItem, item);
        QFETCH(QByteArray, served);
        QFETCH(QString, cause);
        m_rig->publish({item});
        m_rig->download.bodies[u"https://example.org/torvane/velisk-2.0"_s] = served;
        m_rig->installByHand();
        requireUnchanged();
        QCOMPARE(m_rig->windows.kind(), u"failed"_s);
        QVERIFY2(m_rig->windows.cause().contains(cause), qUtf8Printable(m_rig->windows.cause()));
        QVERIFY(!m_rig->windows.scenes.contains(u"ready"_s));
    }

    void itemsWithoutAUsableSignatureAreNotEvenOffered_data() {
        QTest::addColumn<QByteArray>("signature");
        QTest::newRow("too short") << QByteArray(63, 's');
        QTest::newRow("too long") << QByteArray(65, 's');
    }

    void itemsWithoutAUsableSignatureAreNotEvenOffered() {
        QFETCH(QByteArray, signature);
        m_rig->publish({{.payload = UpdateRig::sample("new"), .signature = signature}});
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"up to date"_s);
    }

    void aFileExchangedBetweenCheckAndInstallationIsNotInstalled_data() {
        QTest::addColumn<bool>("isRemoved");
        QTest::newRow("another file in its place") << false;
        QTest::newRow("no file in its place") << true;
    }

    void aFileExchangedBetweenCheckAndInstallationIsNotInstalled() {
        QFETCH(bool, isRemoved);
        m_rig->windows.onShow = [&](const QString& kind) {
            if (kind != u"ready"_s)
                return;
            const QString path = temporaryFile();
            QVERIFY(QFile::remove(path));
            if (!isRemoved)
                TestFiles::put(path, "#!/bin/sh\necho something quite different\n");
        };
        m_rig->installByHand();
        requireUnchanged();
        QCOMPARE(m_rig->windows.kind(), u"failed"_s);
        QVERIFY(m_rig->windows.cause().contains(u"exchanged"_s));
    }

    void aProgramReplacedByOthersMeanwhileStaysTheirs() {
        // It runs, so that its number is not given to another file.
        const FileDescriptor running(::open(QFile::encodeName(m_rig->program()), O_RDONLY | O_CLOEXEC));
        m_rig->windows.onShow = [this](const QString& kind) {
            if (kind != u"ready"_s)
                return;
            QVERIFY(QFile::remove(m_rig->program()));
            TestFiles::put(m_rig->program(), "brought by somebody else");
        };
        m_rig->installByHand();
        QCOMPARE(m_rig->windows.kind(), u"failed"_s);
        QVERIFY(m_rig->windows.cause().contains(u"moved or replaced"_s));
        QCOMPARE(contentOf(m_rig->program()), QByteArray("brought by somebody else"));
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
    }

    void aProgramThatOthersBringWhileTheSuccessorComesUpStaysTheirs() {
        m_rig->relaunchHangs = true;
        m_rig->successorComesUp = false;
        m_rig->windows.answers = {{u"found"_s, Answer::install}, {u"ready"_s, Answer::install}};
        m_rig->updater->checkForUpdates();
        QVERIFY(QTest::qWaitFor([this] { return !m_rig->relaunched.isEmpty(); }, 60'000));
        QVERIFY(QFile::remove(m_rig->program()));
        TestFiles::put(m_rig->program(), "brought by somebody else");
        m_rig->relaunchHangs = false;
        m_rig->waitForScene(u"failed"_s);
        updateWorker().waitForDone();
        QCOMPARE(contentOf(m_rig->program()), QByteArray("brought by somebody else"));
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
    }

    void neitherSpecialRightsNorOtherNamesPassToTheNewProgram() {
        const QString other = m_rig->folder() + u"/another-name"_s;
        QCOMPARE(::link(QFile::encodeName(m_rig->program()), QFile::encodeName(other)), 0);
        QCOMPARE(::chmod(QFile::encodeName(m_rig->program()), 06751), 0);
        m_rig->installByHand();
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("new"));
        QCOMPARE(modeOf(m_rig->program()), mode_t{0751});
        QCOMPARE(contentOf(other), UpdateRig::sample("old"));
    }

    void aSuccessorThatDoesNotComeUpIsTakenBack() {
        const std::optional<FileIdentity> before = identityOf(m_rig->program());
        m_rig->successorComesUp = false;
        m_rig->installByHand();
        requireUnchanged();
        QCOMPARE(m_rig->relaunched, QStringList{m_rig->program()});
        QCOMPARE(identityOf(m_rig->program()), before);
        QVERIFY(m_rig->windows.cause().contains(u"did not start"_s));
        // And once more, now that it does.
        m_rig->windows.give(Answer::close);
        m_rig->waitUntilReady();
        m_rig->successorComesUp = true;
        m_rig->installByHand();
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("new"));
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
    }

    void aProgramThatEndsBeforeItsSuccessorIsUpHasTheOldFileBack() {
        m_rig->relaunchHangs = true;
        m_rig->windows.answers = {{u"found"_s, Answer::install}, {u"ready"_s, Answer::install}};
        m_rig->updater->checkForUpdates();
        QVERIFY(QTest::qWaitFor([this] { return !m_rig->relaunched.isEmpty(); }, 60'000));
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("new"));
        m_rig->updater.reset();
        updateWorker().waitForDone();
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("old"));
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
    }

    void aProgramBroughtByOthersBeforeTheSuccessorIsUpStaysTheirs() {
        m_rig->relaunchHangs = true;
        m_rig->windows.answers = {{u"found"_s, Answer::install}, {u"ready"_s, Answer::install}};
        m_rig->updater->checkForUpdates();
        QVERIFY(QTest::qWaitFor([this] { return !m_rig->relaunched.isEmpty(); }, 60'000));
        QVERIFY(QFile::remove(m_rig->program()));
        TestFiles::put(m_rig->program(), "brought by somebody else");
        m_rig->updater.reset();
        updateWorker().waitForDone();
        QCOMPARE(contentOf(m_rig->program()), QByteArray("brought by somebody else"));
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
    }

    void anUpdateThatIsGivenUpLeavesNothing_data() {
        QTest::addColumn<QString>("at");
        QTest::addColumn<Answer>("answer");
        QTest::newRow("while it is downloaded") << u"downloading"_s << Answer::cancel;
        QTest::newRow("when it is ready") << u"ready"_s << Answer::later;
    }

    void anUpdateThatIsGivenUpLeavesNothing() {
        QFETCH(QString, at);
        QFETCH(Answer, answer);
        m_rig->windows.answers = {{u"found"_s, Answer::install}, {at, answer}};
        m_rig->updater->checkForUpdates();
        m_rig->waitUntilReady();
        updateWorker().waitForDone();
        requireUnchanged();
        QVERIFY(UpdateLock(QFile::encodeName(m_rig->programFolder())).isExclusive());
    }

    void ofTwoInstancesOneUpdatesAndTheOtherSaysSo() {
        m_rig->windows.answers = {{u"found"_s, Answer::install}};
        m_rig->updater->checkForUpdates();
        m_rig->waitForScene(u"ready"_s);
        UpdateRig other(m_rig->folder(), QByteArray(32, 's'));
        other.publishNew();
        other.start();
        other.waitUntilReady();
        other.updater->checkForUpdates();
        other.waitForScene(u"found"_s);
        other.windows.give(Answer::install);
        other.waitForScene(u"failed"_s);
        QVERIFY(other.windows.cause().contains(u"Another velisk"_s));
        m_rig->windows.answers = {{u"ready"_s, Answer::install}};
        m_rig->windows.give(Answer::install);
        QVERIFY(QTest::qWaitFor([this] { return m_rig->replaced == 1; }, 60'000));
        updateWorker().waitForDone();
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("new"));
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
    }

    void leftOversGoAtTheStartUnlessSomebodyIsAtIt() {
        const QString kept = m_rig->programFolder() + u"/.velisk.previous"_s;
        const QString temporary = m_rig->programFolder() + u"/.velisk.0123456789abcdef.tmp"_s;
        TestFiles::put(kept, "an old program");
        TestFiles::put(temporary, "half a program");
        {
            const UpdateLock theirs(QFile::encodeName(m_rig->programFolder()));
            QVERIFY(theirs.isExclusive());
            m_rig->start();
            m_rig->waitUntilReady();
            QVERIFY(QFile::exists(kept) && QFile::exists(temporary));
        }
        m_rig->start();
        m_rig->waitUntilReady();
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("old"));
    }

private:
    QString temporaryFile() const {
        const QStringList entries = entriesOf(m_rig->programFolder());
        const auto isTemporary = [](const QString& name) { return name.endsWith(u".tmp"_s); };
        const auto found = std::ranges::find_if(entries, isTemporary);
        return found == entries.end() ? QString() : m_rig->programFolder() + u'/' + *found;
    }

    void requireUnchanged() const {
        QCOMPARE(m_rig->replaced, 0);
        QCOMPARE(contentOf(m_rig->program()), UpdateRig::sample("old"));
        QCOMPARE(modeOf(m_rig->program()), mode_t{0750});
        updateWorker().waitForDone();
        QCOMPARE(entriesOf(m_rig->programFolder()), programAlone);
    }

    const UpdateRig m_rigForData;
    std::unique_ptr<UpdateRig> m_rig;
};

QTEST_GUILESS_MAIN(InstallationTest)
#include "InstallationTest.moc"
