#include "TorvaneKitTests/Views/PopoverFixture.h"
#include "Views/L2Row.h"
#include "Views/Sparkline.h"
#include "Views/TierCard.h"

#include <QPointer>

using namespace torvane;
using namespace torvane::PopoverReading;
using namespace Qt::StringLiterals;

class PopoverRedrawTest final : public PopoverFixture {
    Q_OBJECT

private Q_SLOTS:
    void whatIsPublishedUnchangedIsNotPaintedAgain() {
        m_scene->settings.badgeChain = BadgeChain::l2(u"Base"_s);
        PaintCounter paints(*m_view);
        for (int i = 0; i < 3; ++i) {
            m_scene->store.snapshot = m_scene->store.snapshot.value();
            m_scene->store.lastUpdated = m_scene->store.lastUpdated.value();
            m_scene->store.ethereumBlockNumber = m_scene->store.ethereumBlockNumber.value();
            m_scene->settings.denom = m_scene->settings.denom.value();
            m_scene->store.snapshot = SampleSnapshot::busyHour(); // Equal, and nothing of it shared.
            PaintCounter::settle();
        }
        QCOMPARE(paints.painted(), QList<QWidget*>());
    }

    void aNewBlockIsPaintedAlone() {
        PaintCounter paints(*m_view);
        m_scene->store.ethereumBlockNumber = 21000001;
        PaintCounter::settle();
        QStringList painted;
        for (QWidget* part : paints.painted()) {
            if (qobject_cast<TextLine*>(part))
                painted.append(part->accessibleName());
            else
                QVERIFY2(part == m_view.get() || part->findChild<TextLine*>(), part->metaObject()->className());
        }
        QCOMPARE(painted, QStringList{u"Mainnet · block 21,000,001"_s});
    }

    void aLiveFigureKeepsTheRowsAndPaintsItsOwn() {
        const QList<L2Row*> before = visible<L2Row>(*m_view);
        PaintCounter paints(*m_view);
        m_scene->change([](Snapshot& it) { it.l2[2].costGwei = 0.013; });
        PaintCounter::settle();
        QCOMPARE(visible<L2Row>(*m_view), before);
        for (L2Row* row : before)
            QCOMPARE(paints.painted().contains(row), row == before[2]);
        QVERIFY(!paints.painted().contains(visible<TierCard>(*m_view)[0]));
    }

    void severalChangesAreShownTogether() {
        PaintCounter paints(*m_view);
        m_scene->store.ethereumBlockNumber = 1;
        m_scene->store.ethereumBlockNumber = 2;
        m_scene->store.ethereumBlockNumber = 3;
        QCOMPARE(lines(*m_view).filter(u"Mainnet"_s), QStringList{u"Mainnet · block 21,000,000"_s});
        PaintCounter::settle();
        QCOMPARE(lines(*m_view).filter(u"Mainnet"_s), QStringList{u"Mainnet · block 3"_s});
    }

    void anotherAppearanceRepaintsAllAndRebuildsNothing() {
        const QList<QWidget*> before = m_view->findChildren<QWidget*>();
        PaintCounter paints(*m_view);
        const QPalette palette = QApplication::palette();
        setCurrentAppearance(Appearance::dark);
        QPalette dark = palette;
        dark.setColor(QPalette::Window, Qt::black);
        QApplication::setPalette(dark);
        PaintCounter::settle();
        QApplication::setPalette(palette);
        QCOMPARE(m_view->findChildren<QWidget*>(), before);
        QVERIFY(paints.painted().contains(visible<TierCard>(*m_view)[0]));
        QVERIFY(paints.painted().contains(visible<L2Row>(*m_view)[0]));
        QVERIFY(paints.painted().contains(visible<Sparkline>(*m_view)[0]));
    }

    void theChartsCopyNoHistory() {
        const Snapshot snapshot = *m_scene->store.snapshot.value();
        const auto charts = visible<Sparkline>(*m_view);
        QCOMPARE(charts[0]->values().constData(), snapshot.gas.history.constData());
        QCOMPARE(charts[1]->values().constData(), snapshot.l2[0].history->constData());
    }

    void theNetworkUnderThePointerIsKnown() {
        QCOMPARE(m_view->hoveredL2(), std::nullopt);
        L2Row* row = visible<L2Row>(*m_view)[3];
        QTest::mouseMove(row, {100, 10});
        QTRY_COMPARE(m_view->hoveredL2(), u"zkSync Era"_s);
        PaintCounter paints(*m_view);
        QTest::mouseMove(row, {120, 12});
        PaintCounter::settle();
        QCOMPARE(paints.painted(), QList<QWidget*>());
        QTest::mouseMove(visible<TierCard>(*m_view)[0], {10, 10});
        QTRY_COMPARE(m_view->hoveredL2(), std::nullopt);
    }

    void openingsLeaveNothingBehind() {
        open();
        const qsizetype parts = m_view->findChildren<QObject*>().size();
        QList<QPointer<QObject>> opened;
        for (int i = 0; i < 20; ++i) {
            open();
            QCOMPARE(m_view->findChildren<QObject*>().size(), parts);
            opened.append(m_view.get());
            for (QObject* part : m_view->findChildren<QObject*>())
                opened.append(part);
        }
        m_view.reset();
        PaintCounter::settle();
        for (const QPointer<QObject>& part : opened)
            QVERIFY(!part);
    }

    void itMayGoWhileAnUpdateIsUnderWay() {
        m_scene->store.ethereumBlockNumber = 5;
        m_view.reset();
        PaintCounter::settle();
        m_scene->store.ethereumBlockNumber = 6;
        m_scene->settings.denom = Denomination::usd;
        PaintCounter::settle();
    }
};

QTEST_MAIN(PopoverRedrawTest)
#include "PopoverRedrawTest.moc"
