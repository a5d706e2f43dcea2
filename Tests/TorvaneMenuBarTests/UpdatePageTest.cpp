#include "UpdatePage.h"

#include "Support/UpdateScenes.h"

#include <QLocale>
#include <QTest>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

namespace {

QList<Answer> answersOf(const Scene& scene) {
    QList<Answer> answers;
    for (const UpdateChoice& choice : pageOf(scene).choices)
        answers.append(choice.answer);
    return answers;
}

UpdatePage found(const Offer& offer) {
    return pageOf(Found{offer});
}

Offer withLink(const QString& link) {
    Offer offer = UpdateScenes::offer();
    offer.notesLink = QUrl(link);
    return offer;
}

} // namespace

class UpdatePageTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void everySceneHasItsAnswersBoldestFirst() {
        QCOMPARE(answersOf(Checking{}), QList{Answer::cancel});
        QCOMPARE(answersOf(Found{UpdateScenes::offer()}), (QList{Answer::install, Answer::later, Answer::skip}));
        QCOMPARE(answersOf(UpToDate{}), QList{Answer::close});
        QCOMPARE(answersOf(Downloading{}), QList{Answer::cancel});
        QCOMPARE(answersOf(Verifying{}), QList<Answer>());
        QCOMPARE(answersOf(ReadyToInstall{}), (QList{Answer::install, Answer::later}));
        QCOMPARE(answersOf(Installing{}), QList<Answer>());
        QCOMPARE(answersOf(Failed{}), QList{Answer::close});
    }

    void theMildestAnswerIsOneOfTheSceneIfItHasAny() {
        for (const auto& [name, scene] : UpdateScenes::all()) {
            const QList<Answer> answers = answersOf(scene);
            const auto mildest = pageOf(scene).mildest;
            QCOMPARE(mildest.has_value(), !answers.isEmpty());
            QVERIFY2(!mildest || answers.contains(*mildest), qPrintable(name));
            QVERIFY2(mildest != Answer::install && mildest != Answer::skip, qPrintable(name));
        }
    }

    void nothingIsBrokenOffByDefault() {
        QVERIFY(!pageOf(Checking{}).byDefault());
        QVERIFY(!pageOf(Downloading{}).byDefault());
        QVERIFY(!pageOf(Verifying{}).byDefault());
        QCOMPARE(found(UpdateScenes::offer()).byDefault()->answer, Answer::install);
        QCOMPARE(pageOf(ReadyToInstall{}).byDefault()->answer, Answer::install);
        QCOMPARE(pageOf(Failed{}).byDefault()->answer, Answer::close);
    }

    void anOfferNamesBothVersionsAndItsSize() {
        const UpdatePage page = found(UpdateScenes::offer());
        QCOMPARE(page.headline, u"velisk 0.4.0 is available"_s);
        QCOMPARE(page.text, u"You have 0.3.0. The download is 4.2 MB."_s);
        QCOMPARE(page.warning, QString());
    }

    void aCriticalOneCannotBeSkippedAndSaysSo() {
        const UpdatePage page = found(UpdateScenes::criticalOffer());
        QCOMPARE(page.warning, u"This update is critical, so that it cannot be skipped."_s);
        QCOMPARE(answersOf(Found{UpdateScenes::criticalOffer()}), (QList{Answer::install, Answer::later}));
    }

    void whereThereIsAnObstacleItIsSaidAndNothingIsOffered() {
        const UpdatePage page = found(UpdateScenes::offerWithObstacle());
        QCOMPARE(page.text, u"You have 0.3.0. This copy in /usr/bin belongs to the system: its package manager brings "
                            u"0.4.0."_s);
        QCOMPARE(answersOf(Found{UpdateScenes::offerWithObstacle()}), QList{Answer::close});
        QCOMPARE(page.mildest, Answer::close);
    }

    void anUnknownSizeIsNotSaid() {
        Offer offer = UpdateScenes::offer();
        offer.length = 0;
        QCOMPARE(found(offer).text, u"You have 0.3.0."_s);
    }

    void sizesAreWrittenAsTheLanguageHasIt() {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(found(UpdateScenes::offer()).text, u"You have 0.3.0. The download is 4,2 MB."_s);
        QCOMPARE(pageOf(Downloading{UpdateScenes::offer(), 1'310'000}).progress->text, u"1,3 MB of 4,2 MB"_s);
    }

    void progressStaysBetweenNothingAndAll_data() {
        QTest::addColumn<qint64>("length");
        QTest::addColumn<qint64>("received");
        QTest::addColumn<double>("fraction");
        QTest::newRow("nothing yet") << qint64(4000) << qint64(0) << 0.0;
        QTest::newRow("a quarter") << qint64(4000) << qint64(1000) << 0.25;
        QTest::newRow("all") << qint64(4000) << qint64(4000) << 1.0;
        QTest::newRow("too much") << qint64(4000) << qint64(4001) << 1.0;
        QTest::newRow("negative") << qint64(4000) << qint64(-1) << 0.0;
        QTest::newRow("no length") << qint64(0) << qint64(0) << 0.0;
        QTest::newRow("negative length") << qint64(-5) << qint64(9) << 1.0;
    }

    void progressStaysBetweenNothingAndAll() {
        QFETCH(const qint64, length);
        QFETCH(const qint64, received);
        QFETCH(const double, fraction);
        Offer offer = UpdateScenes::offer();
        offer.length = length;
        QCOMPARE(pageOf(Downloading{offer, received}).progress->fraction, fraction);
    }

    void onlyWebPagesCanBeOpened_data() {
        QTest::addColumn<QString>("link");
        QTest::addColumn<bool>("isOffered");
        QTest::newRow("https") << u"https://velisk.example/notes"_s << true;
        QTest::newRow("http") << u"http://velisk.example/notes"_s << true;
        QTest::newRow("file") << u"file:///etc/passwd"_s << false;
        QTest::newRow("script") << u"javascript:alert(1)"_s << false;
        QTest::newRow("mail") << u"mailto:someone@velisk.example"_s << false;
        QTest::newRow("data") << u"data:text/html,hello"_s << false;
        QTest::newRow("without host") << u"https:///notes"_s << false;
        QTest::newRow("relative") << u"//velisk.example/notes"_s << false;
        QTest::newRow("none") << QString() << false;
    }

    void onlyWebPagesCanBeOpened() {
        QFETCH(const QString, link);
        QFETCH(const bool, isOffered);
        QCOMPARE(found(withLink(link)).notesLink, isOffered ? QUrl(link) : QUrl());
    }

    void notesAreTakenAsTheyStandWithoutTheBlanksAround() {
        Offer offer = UpdateScenes::offer();
        offer.notes = u"\n\n  <b>Bold</b> & <i>more</i>\n\n"_s;
        QCOMPARE(found(offer).notes, u"<b>Bold</b> & <i>more</i>"_s);
        offer.notes = u" \n\t "_s;
        QCOMPARE(found(offer).notes, QString());
    }

    void textsWithoutEndAreCut() {
        Offer offer = UpdateScenes::endlessOffer();
        offer.notes = QString(3'000'000, u'n');
        offer.obstacle = QString(100'000, u'o');
        const UpdatePage page = found(offer);
        QVERIFY(page.headline.size() < 100);
        QVERIFY(page.text.size() < 1000);
        QVERIFY(page.notes.size() <= 500'000 && page.notes.endsWith(u'…'));
        QVERIFY(pageOf(Failed{QString(100'000, u'c')}).text.size() < 1000);
    }

    void aCauseOfSeveralLinesIsOneSentence() {
        QCOMPARE(pageOf(Failed{u"The relay\n  does not\tanswer."_s}).text, u"The relay does not answer."_s);
    }
};

QTEST_GUILESS_MAIN(UpdatePageTest)
#include "UpdatePageTest.moc"
