#include "Model/ChartHistory.h"

#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

GasData gas(const QList<double>& history) {
    GasData result{};
    result.history = history;
    return result;
}

L2Entry network(const QString& name, const std::optional<QList<double>>& history) {
    L2Entry result{};
    result.name = name;
    result.history = history;
    return result;
}

std::optional<ChartHistory> ofL2(const QString& name, const QList<L2Entry>& l2) {
    return Format::chartHistory(BadgeChain::l2(name), gas({1, 2, 3}), l2);
}

std::optional<ChartHistory> ofEthereum(const std::optional<GasData>& gas) {
    return Format::chartHistory(BadgeChain::ethereum(), gas, {network(u"Base"_s, QList<double>{7, 8})});
}

} // namespace

class ChartHistoryTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ethereumsBaseFeeIsChartedAsItCame() {
        const ChartHistory expected{u"24H BASE FEE"_s, {3, 1, 2}, u"gwei"_s};
        QVERIFY(ofEthereum(gas({3, 1, 2})) == expected);
    }

    void aSingleValueOfEthereumIsAChart() {
        const ChartHistory expected{u"24H BASE FEE"_s, {3}, u"gwei"_s};
        QVERIFY(ofEthereum(gas({3})) == expected);
    }

    void anEmptySeriesOfEthereumIsNoChart() { QVERIFY(!ofEthereum(gas({}))); }

    void withoutFiguresThereIsNoChart() { QVERIFY(!ofEthereum(std::nullopt)); }

    void aNetworksGasIsChartedUnderItsNameInCapitals() {
        const ChartHistory expected{u"ZKSYNC ERA GAS"_s, {0.2, 0.1}, u"gwei"_s};
        QVERIFY(ofL2(u"zkSync Era"_s, {network(u"zkSync Era"_s, QList<double>{0.2, 0.1})}) == expected);
    }

    void aSingleValueOfANetworkIsNoChart() {
        QVERIFY(!ofL2(u"Base"_s, {network(u"Base"_s, QList<double>{1})}));
        QVERIFY(ofL2(u"Base"_s, {network(u"Base"_s, QList<double>{1, 2})}));
    }

    void aNetworkWithoutHistoryIsNoChart() {
        QVERIFY(!ofL2(u"Base"_s, {network(u"Base"_s, std::nullopt)}));
        QVERIFY(!ofL2(u"Base"_s, {network(u"Base"_s, QList<double>{})}));
    }

    void aNetworkThatIsNotListedIsNoChart() {
        const QList<L2Entry> l2{network(u"Base"_s, QList<double>{1, 2})};
        QVERIFY(!ofL2(u"Linea"_s, l2));
        QVERIFY(!ofL2(u"base"_s, l2));
        QVERIFY(!ofL2(u"Base"_s, {}));
    }

    void ofTwoNetworksWithOneNameTheFirstIsCharted() {
        const L2Entry second = network(u"Base"_s, QList<double>{3, 4});
        QCOMPARE(ofL2(u"Base"_s, {network(u"Base"_s, QList<double>{1, 2}), second})->values, (QList<double>{1, 2}));
        QVERIFY(!ofL2(u"Base"_s, {network(u"Base"_s, QList<double>{1}), second}));
    }

    void aLayer2NetworkNamedLikeMainnetIsNotMainnet() {
        const QList<L2Entry> l2{network(u"Ethereum"_s, QList<double>{5, 6})};
        QCOMPARE(ofL2(u"Ethereum"_s, l2)->heading, u"ETHEREUM GAS"_s);
    }

    void capitalsDoNotFollowTheUsersLanguage() {
        QLocale::setDefault(QLocale(QLocale::Turkish));
        const std::optional<ChartHistory> chart = ofL2(u"linea"_s, {network(u"linea"_s, QList<double>{1, 2})});
        QLocale::setDefault(QLocale::c());
        QCOMPARE(chart->heading, u"LINEA GAS"_s);
    }

    void theValuesAreSharedWithTheSnapshot() {
        const GasData source = gas({1, 2, 3});
        QCOMPARE(ofEthereum(source)->values.constData(), source.history.constData());
    }

    void chartsDifferByEachField() {
        const ChartHistory chart{u"A"_s, {1}, u"gwei"_s};
        QVERIFY(chart == (ChartHistory{u"A"_s, {1}, u"gwei"_s}));
        QVERIFY(!(chart == (ChartHistory{u"B"_s, {1}, u"gwei"_s})));
        QVERIFY(!(chart == (ChartHistory{u"A"_s, {2}, u"gwei"_s})));
        QVERIFY(!(chart == (ChartHistory{u"A"_s, {1}, u"wei"_s})));
    }
};

QTEST_GUILESS_MAIN(ChartHistoryTest)
#include "ChartHistoryTest.moc"
