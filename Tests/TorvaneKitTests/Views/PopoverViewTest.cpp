#include "TorvaneKitTests/Views/PopoverFixture.h"
#include "Views/ActionRow.h"
#include "Views/ChartView.h"
#include "Views/FigureLine.h"
#include "Views/L2Detail.h"
#include "Views/L2Row.h"
#include "Views/Paragraph.h"
#include "Views/Sparkline.h"
#include "Views/TierCard.h"

#include <QScrollArea>

using namespace torvane;
using namespace torvane::PopoverReading;
using namespace Qt::StringLiterals;

namespace {

const QStringList allNames{u"Arbitrum"_s, u"Optimism"_s, u"Base"_s, u"zkSync Era"_s, u"Linea"_s, u"Starknet"_s};

} // namespace

class PopoverViewTest final : public PopoverFixture {
    Q_OBJECT

private Q_SLOTS:
    void theHeaderHasBlockFigureAndLevel() {
        QVERIFY(lines(*m_view).contains(u"Ethereum"_s));
        QVERIFY(lines(*m_view).contains(u"Mainnet · block 21,000,000"_s));
        QCOMPARE(readings<FigureLine>(*m_view), QStringList{u"12.4 gwei"_s});
    }

    void withoutALiveBlockTheEstimateIsMarked() {
        m_scene->change([](Snapshot& it) { it.generatedAt = u"2022-09-15T06:42:59Z"_s; });
        m_scene->store.ethereumBlockNumber = std::nullopt;
        PaintCounter::settle();
        QVERIFY(lines(*m_view).contains(u"Mainnet · block ~15,537,393"_s));
    }

    void theTiersStayInGweiWithTheCostOfATransferBelow() {
        const QStringList expected{u"Low: 12.5 gwei, $0.91, Normal"_s, u"Average: 13.4 gwei, $0.97, Normal"_s,
                                   u"High: 31.0 gwei, $2.25, Busy"_s};
        QCOMPARE(readings<TierCard>(*m_view), expected);
        m_scene->settings.denom = Denomination::usd;
        PaintCounter::settle();
        QCOMPARE(readings<TierCard>(*m_view), expected);
    }

    void theHeadlineAndTheRowsFollowTheDenomination() {
        m_scene->settings.denom = Denomination::usd;
        PaintCounter::settle();
        QCOMPARE(readings<FigureLine>(*m_view), QStringList{u"$3457"_s});
        QCOMPARE(visible<L2Row>(*m_view)[0]->accessibleName(), u"Arbitrum, $0.03, Normal"_s);
        QCOMPARE(visible<L2Row>(*m_view)[1]->accessibleName(), u"Optimism, <$0.01, Low"_s);
        QCOMPARE(visible<L2Row>(*m_view)[5]->accessibleName(), u"Starknet, —, Unavailable"_s);
    }

    void costsStandBelowTheTiers() {
        const QStringList shown = lines(*m_view);
        QCOMPARE(shown[shown.indexOf(u"TRANSFER"_s) + 1], u"$0.90"_s);
        QCOMPARE(shown[shown.indexOf(u"SWAP"_s) + 1], u"$6.43"_s);
        QCOMPARE(shown[shown.indexOf(u"NFT MINT"_s) + 1], u"$5.14"_s); // 3456.70 x 12.4e-9 x 120,000
    }

    void absentCostsAreDashes() {
        m_scene->change([](Snapshot& it) { it.gas.feeTransferUsd = it.gas.feeSwapUsd = std::nullopt; });
        PaintCounter::settle();
        const QStringList shown = lines(*m_view);
        QCOMPARE(shown[shown.indexOf(u"TRANSFER"_s) + 1], u"—"_s);
        QCOMPARE(shown[shown.indexOf(u"SWAP"_s) + 1], u"—"_s);
    }

    void thePriceHasItsChange() {
        QStringList shown = lines(*m_view);
        QCOMPARE(shown.mid(shown.indexOf(u"ETH price"_s) + 1, 2), (QStringList{u"$3,456.70"_s, u"+1.2%"_s}));
        m_scene->change([](Snapshot& it) { it.price.change24h = -1.26; });
        PaintCounter::settle();
        QVERIFY(lines(*m_view).contains(u"-1.3%"_s));
    }

    void numbersAreGroupedAsTheUserIsUsedTo() {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        open();
        QVERIFY(lines(*m_view).contains(u"$3.456,70"_s));
        QVERIFY(lines(*m_view).contains(u"Mainnet · block 21.000.000"_s));
    }

    void theChartIsMainnetsWhicheverChainIsChosen() {
        m_scene->settings.badgeChain = BadgeChain::l2(u"Base"_s);
        PaintCounter::settle();
        const auto charts = visible<ChartView>(*m_view);
        QCOMPARE(charts.size(), 2);
        QVERIFY(lines(*charts[0]).contains(u"24H BASE FEE"_s));
        QVERIFY(lines(*charts[1]).contains(u"BASE GAS"_s));
        QCOMPARE(visible<Sparkline>(*charts[0])[0]->height(), 46);
        QCOMPARE(visible<Sparkline>(*charts[0])[0]->values(), m_scene->store.snapshot.value()->gas.history);
        QCOMPARE(visible<Sparkline>(*charts[1])[0]->values(), *m_scene->store.snapshot.value()->l2[2].history);
    }

    void withoutHistoryATextStandsInPlaceOfTheChart() {
        m_scene->change([](Snapshot& it) {
            it.gas.history.clear();
            it.l2[2].history = QList<double>{1};
        });
        m_scene->settings.badgeChain = BadgeChain::l2(u"Base"_s);
        PaintCounter::settle();
        const QStringList expected{u"no history yet"_s,
                                   u"no history yet · the relay starts a 24h series on its next runs"_s};
        QCOMPARE(readings<Paragraph>(*m_view), expected);
        QVERIFY(lines(*m_view).contains(u"24H BASE FEE"_s));
        for (const ChartView* chart : visible<ChartView>(*m_view))
            QVERIFY(visible<Sparkline>(*chart).isEmpty());
        QVERIFY(!visible<L2Row>(*m_view)[2]->findChild<Sparkline*>()->isVisibleTo(m_view.get()));
        QVERIFY(visible<L2Row>(*m_view)[1]->findChild<Sparkline*>()->isVisibleTo(m_view.get()));
    }

    void aHistoryThatBeginsTakesTheTextsPlace() {
        m_scene->change([](Snapshot& it) { it.gas.history.clear(); });
        PaintCounter::settle();
        const int before = m_view->sizeHint().height();
        m_scene->change([](Snapshot& it) { it.gas.history = {1, 2}; });
        PaintCounter::settle();
        QVERIFY(readings<Paragraph>(*m_view).isEmpty());
        QVERIFY(m_view->sizeHint().height() > before);
    }

    void everyNetworkIsListedInTheSnapshotsOrder() {
        QCOMPARE(rowNames(*m_view), allNames);
        QVERIFY(lines(*m_view).contains(u"Layer 2"_s));
        QVERIFY(!lines(*m_view).contains(u"Layer 2 · menu-bar chain"_s));
        QVERIFY(visible<L2Detail>(*m_view).isEmpty());
    }

    void aNetworkIsLeftOutWhileItIsSwitchedOff() {
        m_scene->settings.toggle(u"Base"_s);
        PaintCounter::settle();
        QCOMPARE(rowNames(*m_view),
                 (QStringList{u"Arbitrum"_s, u"Optimism"_s, u"zkSync Era"_s, u"Linea"_s, u"Starknet"_s}));
        m_scene->settings.toggle(u"Base"_s);
        PaintCounter::settle();
        QCOMPARE(rowNames(*m_view), allNames);
    }

    void withAllSwitchedOffTheChosenChainIsStillShownInDetail() {
        m_scene->settings.disabledL2 = QSet<QString>(allNames.begin(), allNames.end());
        m_scene->settings.badgeChain = BadgeChain::l2(u"Base"_s);
        PaintCounter::settle();
        QVERIFY(rowNames(*m_view).isEmpty());
        QVERIFY(lines(*m_view).contains(u"All networks are switched off"_s));
        QCOMPARE(readings<L2Detail>(*m_view), QStringList{u"Base, Normal"_s});
        QCOMPARE(readings<FigureLine>(*m_view), (QStringList{u"12.4 gwei"_s, u"0.012 gwei"_s}));
    }

    void aChosenChainStandsUnderItsOwnHeadingAboveTheRows() {
        m_scene->settings.badgeChain = BadgeChain::l2(u"zkSync Era"_s);
        PaintCounter::settle();
        const QStringList shown = lines(*m_view);
        QVERIFY(shown.indexOf(u"Layer 2 · menu-bar chain"_s) >= 0);
        QVERIFY(shown.indexOf(u"Layer 2 · menu-bar chain"_s) < shown.indexOf(u"Layer 2"_s));
        QCOMPARE(rowNames(*m_view), allNames);
        const L2Detail* detail = visible<L2Detail>(*m_view)[0];
        QVERIFY(detail->mapTo(m_view.get(), QPoint()).y() <
                visible<L2Row>(*m_view)[0]->mapTo(m_view.get(), QPoint()).y());
    }

    void aChosenChainThatIsMissingHasNoDetail() {
        m_scene->settings.badgeChain = BadgeChain::l2(u"Nowhere"_s);
        PaintCounter::settle();
        QVERIFY(visible<L2Detail>(*m_view).isEmpty());
        QCOMPARE(rowNames(*m_view), allNames);
    }

    void withoutASnapshotOnlyLoadingFooterAndActionsAreShown() {
        m_scene->store.snapshot = std::nullopt;
        m_scene->store.lastUpdated = std::nullopt;
        for (int i = 0; i < 2; ++i) {
            PaintCounter::settle();
            QCOMPARE(lines(*m_view), (QStringList{u"Loading gas prices…"_s, u"Updated —"_s, u"Per block"_s}));
            QVERIFY(visible<TierCard>(*m_view).isEmpty());
            QVERIFY(rowNames(*m_view).isEmpty());
            QCOMPARE(visible<ActionRow>(*m_view).size(), 3);
            open();
        }
    }

    void theFirstSnapshotTakesLoadingsPlace() {
        m_scene->store.snapshot = std::nullopt;
        open();
        const int before = m_view->sizeHint().height();
        m_scene->store.snapshot = SampleSnapshot::busyHour();
        PaintCounter::settle();
        QVERIFY(!lines(*m_view).contains(u"Loading gas prices…"_s));
        QCOMPARE(rowNames(*m_view), allNames);
        QVERIFY(m_view->sizeHint().height() > before + 300);
    }

    void theFooterSaysWhenAndHowOften() {
        QVERIFY(lines(*m_view).contains(u"Updated just now"_s));
        QVERIFY(lines(*m_view).contains(u"Per block"_s));
        m_scene->settings.liveCadence = LiveGasCadence::thirty;
        m_scene->store.lastUpdated = PopoverScene::now().addSecs(-60);
        PaintCounter::settle();
        QVERIFY(lines(*m_view).contains(u"30s"_s));
        QVERIFY(lines(*m_view).contains(u"Updated 1m ago"_s));
        m_scene->store.lastUpdated = std::nullopt;
        PaintCounter::settle();
        QVERIFY(lines(*m_view).contains(u"Updated —"_s));
    }

    void theWidthIsFixedAndTheHeightFollowsTheContent() {
        QCOMPARE(m_view->sizeHint().width(), 344);
        const int before = m_view->sizeHint().height();
        m_scene->change([](Snapshot& it) { it.l2.removeLast(); });
        PaintCounter::settle();
        QCOMPARE(m_view->sizeHint().height(), before - 34);
    }

    void longNamesDoNotWidenIt() {
        m_scene->change([](Snapshot& it) {
            for (L2Entry& entry : it.l2)
                entry.name = QString(500, u'N');
            it.gas.baseFee = 1e-300;
            it.price.eth = 1e300;
        });
        m_scene->settings.badgeChain = BadgeChain::l2(QString(500, u'N'));
        PaintCounter::settle();
        QVERIFY(m_view->minimumSizeHint().width() <= 344);
        for (const QWidget* part : m_view->findChildren<QWidget*>()) {
            const int right = part->mapTo(m_view.get(), QPoint(part->width(), 0)).x();
            QVERIFY2(!part->isVisibleTo(m_view.get()) || right <= 344, part->metaObject()->className());
        }
    }

    void sixtyNetworksScroll() {
        m_scene->change([](Snapshot& it) { it.l2 = SampleSnapshot::networks(60); });
        QScrollArea area;
        area.setWidgetResizable(true);
        area.setWidget(m_view.release());
        area.resize(360, 500);
        area.show();
        PaintCounter::settle();
        QCOMPARE(visible<L2Row>(area).size(), 60);
        QVERIFY(area.widget()->height() > 60 * 34);
        m_view.reset(static_cast<PopoverView*>(area.takeWidget()));
    }
};

QTEST_MAIN(PopoverViewTest)
#include "PopoverViewTest.moc"
