#include "Chain/FeeHistory.h"

#include <QTest>

#include <limits>

using namespace torvane;

namespace {

constexpr quint64 gwei = 1'000'000'000;

QList<HexQuantity> quantities(const QList<quint64>& values) {
    QList<HexQuantity> list;
    for (const quint64 value : values)
        list.append(HexQuantity{value});
    return list;
}

/// Blocks from number 100, each paying the same three priority fees on base fees of 10, 11, 12 ... gwei.
FeeHistoryResponse history(qsizetype blocks) {
    FeeHistoryResponse response{{100}, {}, QList<double>(blocks, 0.5), {}};
    for (qsizetype i = 0; i <= blocks; ++i)
        response.baseFeePerGas.append(HexQuantity{(10 + static_cast<quint64>(i)) * gwei});
    response.reward.fill(quantities({gwei, 2 * gwei, 3 * gwei}), blocks);
    return response;
}

/// How deriving a quote from this fails; none where it succeeds.
std::optional<FeeHistoryFailure::Case> failureOf(const FeeHistoryResponse& response) {
    try {
        deriveLive(response);
        return std::nullopt;
    } catch (const FeeHistoryFailure& failure) {
        return failure.which();
    }
}

} // namespace

class FeeHistoryTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theParametersAreAPositionalList() {
        const JSONRPCRequest request(1, QStringLiteral("eth_feeHistory"), FeeHistoryParams{20, {15, 50, 90}});
        QCOMPARE(JSON::encode(request), QByteArray(R"({"jsonrpc":"2.0","id":1,"method":"eth_feeHistory",)"
                                                   R"("params":["0x14","latest",[15,50,90]]})"));
    }

    void anAnswerIsReadWithWhatElseItHolds() {
        const QByteArray answer = R"({"jsonrpc":"2.0","id":1,"result":{"oldestBlock":"0x6",
            "reward":[["0x8f0d180","0x14dc9380","0x26be3680"]],"baseFeePerGas":["0x2cb417800","0x343776500"],
            "gasUsedRatio":[0],"baseFeePerBlobGas":["0x1","0x1"],"blobGasUsedRatio":[0.5]}})";
        const auto response = JSON::decode<JSONRPCResponse<FeeHistoryResponse>>(answer);
        const LiveGasQuote quote = deriveLive(response.value());
        QCOMPARE(quote, (LiveGasQuote{12, 12 + 0.15, 12 + 0.35, 12 + 0.65, 6}));
    }

    void everyKeyIsNeeded_data() {
        QTest::addColumn<QByteArray>("key");
        for (const char* key : {"oldestBlock", "baseFeePerGas", "gasUsedRatio", "reward"})
            QTest::newRow(key) << QByteArray(key);
    }

    void everyKeyIsNeeded() {
        QFETCH(QByteArray, key);
        const QByteArray good = R"({"oldestBlock":"0x6","baseFeePerGas":[],"gasUsedRatio":[],"reward":[]})";
        QVERIFY(JSON::decode<FeeHistoryResponse>(good).reward.isEmpty());
        QByteArray bad = good;
        bad.replace(key, "other");
        QVERIFY_EXCEPTION_THROWN(JSON::decode<FeeHistoryResponse>(bad), DecodingError);
        QByteArray null = good;
        null.replace("\"" + key + "\":" + (key == "oldestBlock" ? "\"0x6\"" : "[]"), "\"" + key + "\":null");
        QVERIFY(null != good);
        QVERIFY_EXCEPTION_THROWN(JSON::decode<FeeHistoryResponse>(null), DecodingError);
    }

    void oneBlockGivesItsOwnFigures() {
        const LiveGasQuote quote = deriveLive(history(1));
        QCOMPARE(quote, (LiveGasQuote{10, 11, 12, 13, 100}));
    }

    void theForecastForTheNextBlockIsNotUsed() {
        FeeHistoryResponse response = history(1);
        response.baseFeePerGas = quantities({gwei, 2 * gwei});
        QCOMPARE(deriveLive(response).baseFee, 1.0);
    }

    void twentyBlocksGiveTheNewestOnesNumberAndBaseFee() {
        const LiveGasQuote quote = deriveLive(history(20));
        QCOMPARE(quote.blockNumber, quint64{119});
        QCOMPARE(quote.baseFee, 29.0);
    }

    void theMedianIsTheUpperOneOfAnEvenNumber_data() {
        QTest::addColumn<QList<quint64>>("fees");
        QTest::addColumn<double>("median");
        QTest::newRow("four") << QList<quint64>{1, 2, 3, 4} << 3.0;
        QTest::newRow("four, unsorted") << QList<quint64>{4, 1, 3, 2} << 3.0;
        QTest::newRow("three") << QList<quint64>{9, 1, 5} << 5.0;
        QTest::newRow("two") << QList<quint64>{7, 2} << 7.0;
        QTest::newRow("one") << QList<quint64>{7} << 7.0;
        QTest::newRow("twenty") << QList<quint64>{20, 1, 19, 2, 18, 3, 17, 4, 16, 5, 15, 6, 14, 7, 13, 8, 12, 9, 11, 10}
                                << 11.0;
        QTest::newRow("equal ones") << QList<quint64>{5, 5, 1, 5} << 5.0;
        QTest::newRow("empty blocks") << QList<quint64>{0, 0, 0, 8} << 0.0;
    }

    void theMedianIsTheUpperOneOfAnEvenNumber() {
        QFETCH(QList<quint64>, fees);
        QFETCH(double, median);
        for (qsizetype column = 0; column < 3; ++column) { // Each column by itself.
            FeeHistoryResponse response = history(fees.size());
            for (qsizetype block = 0; block < fees.size(); ++block)
                response.reward[block][column].value = fees[block] * gwei;
            const LiveGasQuote quote = deriveLive(response);
            QList<double> expected{1, 2, 3};
            expected[column] = median;
            QCOMPARE(QList<double>({quote.low - quote.baseFee, quote.avg - quote.baseFee, quote.high - quote.baseFee}),
                     expected);
        }
    }

    void listsThatDoNotFitFail_data() {
        QTest::addColumn<int>("baseFees");
        QTest::addColumn<int>("ratios");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("shortRow");
        QTest::addColumn<FeeHistoryFailure::Case>("failure");
        using enum FeeHistoryFailure::Case;
        QTest::newRow("nothing at all") << 0 << 0 << 0 << -1 << invalidLengths;
        QTest::newRow("no block") << 1 << 0 << 0 << -1 << invalidLengths;
        QTest::newRow("no forecast") << 20 << 20 << 20 << -1 << invalidLengths;
        QTest::newRow("as many ratios as base fees") << 21 << 21 << 20 << -1 << invalidLengths;
        QTest::newRow("too many base fees") << 22 << 20 << 20 << -1 << invalidLengths;
        QTest::newRow("bad lengths and bad rewards") << 21 << 21 << 19 << 0 << invalidLengths;
        QTest::newRow("a row too few") << 21 << 20 << 19 << -1 << invalidReward;
        QTest::newRow("a row too many") << 21 << 20 << 21 << -1 << invalidReward;
        QTest::newRow("no rows") << 21 << 20 << 0 << -1 << invalidReward;
        QTest::newRow("a short first row") << 21 << 20 << 20 << 0 << invalidReward;
        QTest::newRow("a short last row") << 21 << 20 << 20 << 19 << invalidReward;
    }

    void listsThatDoNotFitFail() {
        QFETCH(int, baseFees);
        QFETCH(int, ratios);
        QFETCH(int, rows);
        QFETCH(int, shortRow);
        QFETCH(FeeHistoryFailure::Case, failure);
        FeeHistoryResponse response{{100}, QList<HexQuantity>(baseFees), QList<double>(ratios), {}};
        response.reward.fill(quantities({1, 2, 3}), rows);
        if (shortRow >= 0)
            response.reward[shortRow].removeLast();
        QCOMPARE(failureOf(response), std::optional(failure));
    }

    void anEmptyRowFails() {
        FeeHistoryResponse response = history(3);
        response.reward[1].clear();
        QCOMPARE(failureOf(response), std::optional(FeeHistoryFailure::Case::invalidReward));
    }

    void moreFeesThanAskedForAreIgnored() {
        FeeHistoryResponse response = history(2);
        response.reward[1].append(HexQuantity{99 * gwei});
        QCOMPARE(deriveLive(response), deriveLive(history(2)));
    }

    void fewerBlocksThanAskedForAreFine() { QCOMPARE(deriveLive(history(3)).blockNumber, quint64{102}); }

    void onlyNumbersOfBlocksThatFitAreAccepted() {
        FeeHistoryResponse response = history(20);
        response.oldestBlock.value = std::numeric_limits<quint64>::max() - 19;
        QVERIFY(hasBlockNumbers(response));
        QCOMPARE(deriveLive(response).blockNumber, std::numeric_limits<quint64>::max());
        ++response.oldestBlock.value;
        QVERIFY(!hasBlockNumbers(response));
        QVERIFY(hasBlockNumbers({{std::numeric_limits<quint64>::max()}, {}, {}, {}}));
    }

    void theLargestQuantitiesStayFinite() {
        FeeHistoryResponse response = history(1);
        response.baseFeePerGas.fill(HexQuantity{std::numeric_limits<quint64>::max()});
        response.reward[0].fill(HexQuantity{std::numeric_limits<quint64>::max()});
        const LiveGasQuote quote = deriveLive(response);
        QCOMPARE(quote.baseFee, 18446744073.709551616);
        QCOMPARE(quote.high, 2 * quote.baseFee);
    }
};

QTEST_GUILESS_MAIN(FeeHistoryTest)
#include "FeeHistoryTest.moc"
