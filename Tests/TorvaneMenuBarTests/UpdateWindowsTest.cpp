#include "UpdateWindows.h"

#include "Design/Theme.h"
#include "NotesView.h"
#include "Support/AccessibleTree.h"
#include "Support/PaintCounter.h"
#include "Support/UpdateScenes.h"
#include "Views/ProgressBar.h"
#include "Views/TextButton.h"

#include <QApplication>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30'000;

} // namespace

class UpdateWindowsTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<UpdateWindows> m_windows;
    QList<Answer> m_answers;

    void show(const Scene& scene) {
        m_windows->show(scene, [this](Answer answer) { m_answers.append(answer); });
        QVERIFY(QTest::qWaitForWindowActive(m_windows->window(), limitMs));
    }

    UpdateWindow* window() const { return m_windows->window(); }

    /// Of what is shown; a page that was left may not be gone yet.
    template <class Part>
    QList<Part*> parts() const {
        QList<Part*> parts;
        for (Part* each : window()->findChildren<Part*>()) {
            if (each->isVisible())
                parts.append(each);
        }
        return parts;
    }

    TextButton* button(const QString& text) const {
        for (TextButton* each : parts<TextButton>()) {
            if (each->text() == text)
                return each;
        }
        return nullptr;
    }

    void press(Qt::Key key) const { QTest::keyClick(window()->windowHandle(), key); }

    bool isGone() const { return !m_windows->window(); }

    /// By then an answer would have come.
    static void settle() { PaintCounter::settle(); }

private Q_SLOTS:
    void initTestCase() { QApplication::setQuitOnLastWindowClosed(false); }

    void init() {
        m_answers.clear();
        m_windows = std::make_unique<UpdateWindows>();
    }

    void cleanup() {
        m_windows.reset();
        QCOMPARE(QApplication::topLevelWidgets().size(), 0);
    }

    void thereIsNoWindowWhereNothingIsShown() {
        QVERIFY(isGone());
        m_windows->bringToFront();
        m_windows->close();
        QVERIFY(isGone());
    }

    void aWindowThatNobodyAskedForLeavesTheKeyboardWhereItIs() {
        QVERIFY(!QGuiApplication::focusWindow());
        m_windows->show(Found{UpdateScenes::offer()}, {});
        QVERIFY(window()->isVisible());
        QVERIFY(window()->testAttribute(Qt::WA_ShowWithoutActivating));
        m_windows->bringToFront();
        QVERIFY(!window()->testAttribute(Qt::WA_ShowWithoutActivating));
        QVERIFY(QTest::qWaitForWindowActive(window(), limitMs));
    }

    void whoIsAtWorkWithTheProgramGetsItWithTheKeyboard() {
        QWidget other;
        other.show();
        QVERIFY(QTest::qWaitForWindowActive(&other, limitMs));
        m_windows->show(Found{UpdateScenes::offer()}, {});
        QVERIFY(!window()->testAttribute(Qt::WA_ShowWithoutActivating));
        QVERIFY(QTest::qWaitForWindowActive(window(), limitMs));
    }

    void itIsAnOrdinaryWindowOfAFixedSize() {
        show(Checking{});
        QCOMPARE(window()->windowType(), Qt::Window);
        QCOMPARE(window()->windowTitle(), u"velisk Update"_s);
        QCOMPARE(window()->minimumSize(), window()->maximumSize());
        QVERIFY(!window()->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
        QVERIFY(!window()->windowIcon().isNull());
    }

    void everyPageFitsTheScreenWhereTheWindowAppears() {
        show(Checking{});
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        for (const auto& [name, scene] : UpdateScenes::all()) {
            show(scene);
            QVERIFY2(screen.contains(window()->geometry()), qPrintable(name));
        }
    }

    void everySceneIsShownInTheSameWindowWhereItIs() {
        show(Checking{});
        UpdateWindow* const first = window();
        first->move(70, 90);
        const QPoint place = first->pos();
        for (const auto& [name, scene] : UpdateScenes::all()) {
            show(scene);
            QCOMPARE(window(), first);
            QCOMPARE(window()->pos(), place);
            QCOMPARE(window()->width(), 480);
        }
    }

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

    void itComesBackToTheFront() {
        show(Found{UpdateScenes::offer()});
        UpdateWindow* const first = window();
        first->setWindowState(Qt::WindowMinimized);
        m_windows->bringToFront();
        QCOMPARE(window(), first);
        QVERIFY(QTest::qWaitForWindowActive(first, limitMs));
        QVERIFY(!first->isMinimized());
    }

    void progressRepaintsWhatChangesAlone() {
        Offer offer = UpdateScenes::offer();
        offer.length = 100'000'000;
        show(Downloading{offer, 10'010'000});
        PaintCounter paints(*window());
        for (qint64 received = 10'010'000; received < 10'040'000; received += 100)
            show(Downloading{offer, received});
        settle();
        QCOMPARE(paints.count(), 0);
        show(Downloading{offer, 20'000'000});
        settle();
        QVERIFY(paints.painted().contains(parts<ProgressBar>().first()));
        QVERIFY(!paints.painted().contains(button(u"Cancel"_s)));
    }

    void theSameSceneAgainChangesNothing() {
        for (const auto& [name, scene] : UpdateScenes::all()) {
            show(scene);
            PaintCounter paints(*window());
            show(scene);
            settle();
            QVERIFY2(paints.count() == 0, qPrintable(name));
        }
    }

    void anotherAppearanceRecoloursTheOpenWindow() {
        show(Found{UpdateScenes::offer()});
        QCOMPARE(window()->grab().toImage().pixelColor(4, 4), Palette::paper.in(Appearance::light));
        setCurrentAppearance(Appearance::dark);
        QApplication::setPalette(widgetPalette(Appearance::dark));
        settle();
        const QImage dark = window()->grab().toImage();
        setCurrentAppearance(Appearance::light);
        QApplication::setPalette(widgetPalette(Appearance::light));
        QCOMPARE(dark.pixelColor(4, 4), Palette::paper.in(Appearance::dark));
        const NotesView* notes = parts<NotesView>().first();
        QCOMPARE(dark.pixelColor(notes->mapTo(window(), QPoint(5, notes->height() / 2))),
                 Palette::surface.in(Appearance::dark));
    }

    void assistiveTechnologyReadsIt() {
        show(Downloading{UpdateScenes::offer(), 2'105'344});
        const QString text = AccessibleTree::of(*window());
        QVERIFY2(text.contains(u"Pane \"Downloading velisk 0.4.0\""_s), qPrintable(text));
        QVERIFY2(text.contains(u"ProgressBar \"Downloading velisk 0.4.0\" = 50%"_s), qPrintable(text));
        QVERIFY2(text.contains(u"StaticText \"2.1 MB of 4.2 MB\""_s), qPrintable(text));
        QVERIFY2(text.contains(u"Button \"Cancel\""_s), qPrintable(text));
        show(Found{UpdateScenes::criticalOffer()});
        const QString offer = AccessibleTree::of(*window());
        QVERIFY2(offer.contains(u"StaticText \"This update is critical, so that it cannot be skipped.\""_s),
                 qPrintable(offer));
        QVERIFY2(offer.contains(u"EditableText \"Release notes\""_s), qPrintable(offer));
        QVERIFY2(offer.contains(u"Button \"Install Update\" focused"_s), qPrintable(offer));
    }

    void markupInTheNotesIsShownAsItStands() {
        Offer offer = UpdateScenes::offer();
        offer.version = u"<h1>9</h1>"_s;
        offer.notes = u"<img src='https://elsewhere.example/pixel'> & <b>bold</b>"_s;
        show(Found{offer});
        QCOMPARE(parts<NotesView>().first()->toPlainText(), offer.notes);
        QVERIFY(AccessibleTree::of(*window()).contains(u"velisk <h1>9</h1> is available"_s));
    }

    void notesOfTenThousandLinesScrollToTheirEnd() {
        show(Found{UpdateScenes::endlessOffer()});
        const NotesView* notes = parts<NotesView>().first();
        QVERIFY(notes->blockCount() > 10'000);
        QVERIFY(notes->verticalScrollBar()->maximum() > 9'900);
        parts<NotesView>().first()->setFocus();
        QTest::keyClick(window()->windowHandle(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(notes->verticalScrollBar()->value(), notes->verticalScrollBar()->maximum());
        QCOMPARE(window()->width(), 480);
    }

    void withoutNotesThereIsNoRoomForThem() {
        show(Found{UpdateScenes::offerWithoutNotes()});
        QVERIFY(parts<NotesView>().isEmpty());
        QVERIFY(!button(u"Release Notes…"_s));
        QVERIFY(window()->height() < 200);
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

QTEST_MAIN(UpdateWindowsTest)
#include "UpdateWindowsTest.moc"
