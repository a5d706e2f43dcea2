#include "NotesView.h"
#include "UpdateWindows.h"
#include "UpdateWindowsFixture.h"
#include "Views/ProgressBar.h"

#include <QFile>
#include <QTemporaryDir>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

class UpdateAnswersTest final : public UpdateWindowsFixture {
    Q_OBJECT

private Q_SLOTS:
    void aClickAnswersOnceAndFromTheLoop_data() {
        QTest::addColumn<Scene>("scene");
        QTest::addColumn<QString>("text");
        QTest::addColumn<Answer>("answer");
        QTest::newRow("checking") << Scene(Checking{}) << u"Cancel"_s << Answer::cancel;
        QTest::newRow("install") << Scene(Found{UpdateScenes::offer()}) << u"Install Update"_s << Answer::install;
        QTest::newRow("later") << Scene(Found{UpdateScenes::offer()}) << u"Remind Me Later"_s << Answer::later;
        QTest::newRow("skip") << Scene(Found{UpdateScenes::offer()}) << u"Skip This Version"_s << Answer::skip;
        QTest::newRow("obstacle") << Scene(Found{UpdateScenes::offerWithObstacle()}) << u"Close"_s << Answer::close;
        QTest::newRow("up to date") << Scene(UpToDate{u"0.3.0"_s}) << u"Close"_s << Answer::close;
        QTest::newRow("downloading") << Scene(Downloading{UpdateScenes::offer()}) << u"Cancel"_s << Answer::cancel;
        QTest::newRow("relaunch") << Scene(ReadyToInstall{UpdateScenes::offer()}) << u"Install and Relaunch"_s
                                  << Answer::install;
        QTest::newRow("not now") << Scene(ReadyToInstall{UpdateScenes::offer()}) << u"Later"_s << Answer::later;
        QTest::newRow("failed") << Scene(Failed{u"The relay does not answer."_s}) << u"Close"_s << Answer::close;
    }

    void aClickAnswersOnceAndFromTheLoop() {
        QFETCH(const Scene, scene);
        QFETCH(const QString, text);
        QFETCH(const Answer, answer);
        show(scene);
        QVERIFY(button(text));
        QTest::mouseClick(button(text), Qt::LeftButton);
        QCOMPARE(m_answers, QList<Answer>());
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList{answer}, limitMs);
        QTest::mouseClick(button(text), Qt::LeftButton);
        settle();
        QCOMPARE(m_answers, QList{answer});
    }

    void aCriticalUpdateHasNoButtonToSkipIt() {
        show(Found{UpdateScenes::criticalOffer()});
        QVERIFY(!button(u"Skip This Version"_s));
        QVERIFY(button(u"Install Update"_s));
    }

    void escapeAndTheDesktopsCloseGiveTheMildestAnswer_data() {
        QTest::addColumn<Scene>("scene");
        QTest::addColumn<Answer>("answer");
        QTest::newRow("checking") << Scene(Checking{}) << Answer::cancel;
        QTest::newRow("found") << Scene(Found{UpdateScenes::offer()}) << Answer::later;
        QTest::newRow("critical") << Scene(Found{UpdateScenes::criticalOffer()}) << Answer::later;
        QTest::newRow("obstacle") << Scene(Found{UpdateScenes::offerWithObstacle()}) << Answer::close;
        QTest::newRow("up to date") << Scene(UpToDate{u"0.3.0"_s}) << Answer::close;
        QTest::newRow("downloading") << Scene(Downloading{UpdateScenes::offer()}) << Answer::cancel;
        QTest::newRow("ready") << Scene(ReadyToInstall{UpdateScenes::offer()}) << Answer::later;
        QTest::newRow("failed") << Scene(Failed{u"The relay does not answer."_s}) << Answer::close;
    }

    void escapeAndTheDesktopsCloseGiveTheMildestAnswer() {
        QFETCH(const Scene, scene);
        QFETCH(const Answer, answer);
        show(scene);
        press(Qt::Key_Escape);
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList{answer}, limitMs);
        QTRY_VERIFY_WITH_TIMEOUT(isGone(), limitMs);
        show(scene);
        window()->windowHandle()->close();
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, (QList{answer, answer}), limitMs);
        QTRY_VERIFY_WITH_TIMEOUT(isGone(), limitMs);
    }

    void escapeFromTheNotesIsTheSame() {
        show(Found{UpdateScenes::offer()});
        parts<NotesView>().first()->setFocus();
        press(Qt::Key_Escape);
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList{Answer::later}, limitMs);
    }

    void returnAnswersFromWhereverTheKeyboardIs() {
        show(Found{UpdateScenes::offer()});
        QCOMPARE(window()->focusWidget(), button(u"Install Update"_s));
        press(Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList{Answer::install}, limitMs);
        m_windows->close();
        show(Found{UpdateScenes::offer()});
        parts<NotesView>().first()->setFocus();
        press(Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, (QList{Answer::install, Answer::install}), limitMs);
    }

    void returnOnAnotherButtonPressesThatOne() {
        show(Found{UpdateScenes::offer()});
        button(u"Skip This Version"_s)->setFocus();
        press(Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList{Answer::skip}, limitMs);
    }

    void returnBreaksNothingOff() {
        for (const Scene& scene : {Scene(Checking{}), Scene(Downloading{UpdateScenes::offer()})}) {
            show(scene);
            press(Qt::Key_Return);
            settle();
            QCOMPARE(m_answers, QList<Answer>());
        }
    }

    void tabVisitsAllThatCanBeUsedInReadingOrder() {
        show(Found{UpdateScenes::offer()});
        const QList<QWidget*> order{button(u"Release Notes…"_s), parts<NotesView>().first(),
                                    button(u"Skip This Version"_s), button(u"Remind Me Later"_s),
                                    button(u"Install Update"_s)};
        for (QWidget* each : order) {
            press(Qt::Key_Tab);
            QCOMPARE(window()->focusWidget(), each);
        }
    }

    void whileItInstallsEscapeDoesNothingAndClosingHidesItOnly() {
        show(Installing{UpdateScenes::offer()});
        press(Qt::Key_Escape);
        settle();
        QVERIFY(window()->isVisible());
        window()->windowHandle()->close(); // As a program does that quits: one that refused would keep it.
        QTRY_VERIFY_WITH_TIMEOUT(isGone(), limitMs);
        QCOMPARE(m_answers, QList<Answer>());
        m_windows->bringToFront();
        QVERIFY(window()->isVisible());
    }

    void closeTakesTheWindowAwayWithoutAnAnswer() {
        show(Found{UpdateScenes::offer()});
        m_windows->close();
        QTRY_VERIFY_WITH_TIMEOUT(isGone(), limitMs);
        settle();
        QCOMPARE(m_answers, QList<Answer>());
    }

    void aClickThatComesTooLateAnswersNothing() {
        show(Downloading{UpdateScenes::offer()});
        QTest::mouseClick(button(u"Cancel"_s), Qt::LeftButton);
        m_windows->show(ReadyToInstall{UpdateScenes::offer()}, [this](Answer answer) { m_answers.append(answer); });
        settle();
        QCOMPARE(m_answers, QList<Answer>());
        press(Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList{Answer::install}, limitMs);
    }

    void aClickDuringProgressReachesWhoeverListensThen() {
        QList<Answer> first;
        m_windows->show(Downloading{UpdateScenes::offer(), 1}, [&first](Answer answer) { first.append(answer); });
        QVERIFY(QTest::qWaitForWindowActive(window(), limitMs));
        QTest::mouseClick(button(u"Cancel"_s), Qt::LeftButton);
        show(Downloading{UpdateScenes::offer(), 2});
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList{Answer::cancel}, limitMs);
        QCOMPARE(first, QList<Answer>());
    }

    void anAnswerMayShowWhatFollows() {
        m_windows->show(Found{UpdateScenes::offer()},
                        [this](Answer) { m_windows->show(Downloading{UpdateScenes::offer()}, {}); });
        QVERIFY(QTest::qWaitForWindowActive(window(), limitMs));
        QTest::mouseClick(button(u"Install Update"_s), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(parts<ProgressBar>().size(), 1, limitMs);
        QTest::mouseClick(button(u"Cancel"_s), Qt::LeftButton); // Nobody listens.
        settle();
    }

    void anAnswerMayEndTheWindows() {
        m_windows->show(Failed{u"The relay does not answer."_s}, [this](Answer) { m_windows.reset(); });
        QVERIFY(QTest::qWaitForWindowActive(window(), limitMs));
        press(Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(!m_windows, limitMs);
    }

    void theLinkIsOpenedByAClickAlone() {
        const QTemporaryDir folder;
        const QString opened = folder.filePath(u"opened"_s);
        QFile browser(folder.filePath(u"xdg-open"_s));
        QVERIFY(browser.open(QIODevice::WriteOnly));
        browser.write("#!/bin/sh\nprintf '%s\\n' \"$@\" >'" + QFile::encodeName(opened) + ".part'\nmv '" +
                      QFile::encodeName(opened) + ".part' '" + QFile::encodeName(opened) + "'\n");
        browser.close();
        QVERIFY(browser.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(folder.path()) + ':' + path);
        Offer offer = UpdateScenes::offer();
        offer.notesLink = QUrl(u"https://velisk.example/notes?a=b&c=--help x"_s);
        show(Found{offer});
        settle();
        QVERIFY(!QFile::exists(opened));
        QTest::mouseClick(button(u"Release Notes…"_s), Qt::LeftButton);
        qputenv("PATH", path);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(opened), limitMs);
        QFile result(opened);
        QVERIFY(result.open(QIODevice::ReadOnly));
        QCOMPARE(result.readAll(), "https://velisk.example/notes?a=b&c=--help%20x\n");
        QCOMPARE(m_answers, QList<Answer>());
    }
};

QTEST_MAIN(UpdateAnswersTest)
#include "UpdateAnswersTest.moc"
