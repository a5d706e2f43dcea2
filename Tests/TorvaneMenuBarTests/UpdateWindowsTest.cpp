#include "UpdateWindows.h"

#include "Design/Theme.h"
#include "NotesView.h"
#include "Support/AccessibleTree.h"
#include "UpdateWindowsFixture.h"
#include "Views/ProgressBar.h"

#include <QScreen>
#include <QScrollBar>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;

class UpdateWindowsTest final : public UpdateWindowsFixture {
    Q_OBJECT

private Q_SLOTS:
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
};

QTEST_MAIN(UpdateWindowsTest)
#include "UpdateWindowsTest.moc"
