#include "Model/Snapshot.h"

#include "Support/JSON.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace torvane;

namespace {

SourceProvenance provenance(const QString& source) {
    return {QStringLiteral("live"), source, QStringLiteral("read on the chain")};
}

L2Entry fullEntry() {
    return {QStringLiteral("Arbitrum"),
            QStringLiteral("ARB"),
            0.0012,
            0.01,
            QStringLiteral("Normal"),
            1234,
            56789,
            1.5e10,
            QList<double>{0.01, 0.02, 0.0125},
            1440,
            QList<QString>{QStringLiteral("https://one.example"), QStringLiteral("https://two.example")},
            0.25};
}

L2Entry bareEntry() {
    L2Entry entry{};
    entry.name = QStringLiteral("Base");
    entry.tag = QStringLiteral("BASE");
    entry.status = QStringLiteral("Elevated");
    return entry;
}

/// Every field of every record is there, each with a value of its own.
Snapshot fullSnapshot() {
    const LiquidStakingProtocol protocol{QStringLiteral("Alpha"),
                                         QStringLiteral("aETH"),
                                         1e6,
                                         1.05,
                                         1.05e6,
                                         0.03,
                                         provenance(QStringLiteral("contract"))};
    return {QStringLiteral("2026-01-15T12:34:56.789Z"),
            {3456.78, -1.26, 3455.9, 0.025},
            {0.81, 0.83, 0.9, 1.4, {0.8, 0.7, 0.9}, 0.059, 0.42},
            {fullEntry(), bareEntry()},
            {{{protocol}, 12345678.9, 0.33, provenance(QStringLiteral("sum"))}}};
}

/// The document with the value at a place such as "l2.0.costGwei" replaced, or removed when it is undefined.
QJsonValue replaced(const QJsonValue& tree, const QStringList& place, const QJsonValue& value) {
    if (place.isEmpty())
        return value;
    const QStringList rest = place.mid(1);
    if (tree.isArray()) {
        QJsonArray array = tree.toArray();
        const qsizetype index = place.first().toLongLong();
        array[index] = replaced(array.at(index), rest, value);
        return array;
    }
    QJsonObject object = tree.toObject();
    object[place.first()] = replaced(object.value(place.first()), rest, value); // undefined removes the member
    return object;
}

QByteArray fullDocumentWith(const QString& place, const QJsonValue& value) {
    const QJsonObject tree = QJsonDocument::fromJson(JSON::encode(fullSnapshot())).object();
    return QJsonDocument(replaced(tree, place.split(u'.'), value).toObject()).toJson();
}

/// "ok", or the path of the first bad key.
QByteArray outcome(const QByteArray& bytes) {
    try {
        JSON::decode<Snapshot>(bytes);
        return "ok";
    } catch (const DecodingError& error) {
        return error.path();
    }
}

template <class T>
bool comesBack(const T& record) {
    const QByteArray bytes = JSON::encode(record);
    return JSON::encode(JSON::decode<T>(bytes)) == bytes;
}

} // namespace

class SnapshotTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKeyIsCheckedForPresenceAndType_data() {
        QTest::addColumn<bool>("required");
        QTest::addColumn<QJsonValue>("wrong");
        const auto rows = [](const char* prefix, bool required, const QJsonValue& wrong, const QStringList& keys) {
            for (const QString& key : keys)
                QTest::newRow(qPrintable(QLatin1String(prefix) + key)) << required << wrong;
        };
        const auto keys = [](const char* names) { return QString(QLatin1String(names)).split(u' '); };
        const QJsonValue text = QStringLiteral("1");
        const QJsonValue number = 1;
        rows("", true, number, keys("generatedAt price gas l2 staking"));
        rows("price.", true, text, keys("eth change24h"));
        rows("price.", false, text, keys("chainlinkEth sourceSpreadPct"));
        rows("gas.", true, text, keys("baseFee low avg high history"));
        rows("gas.", false, text, keys("feeTransferUsd feeSwapUsd"));
        rows("l2.0.", true, number, keys("name tag status"));
        rows("l2.0.", false, text, keys("costUsd costGwei txCount dailyActiveAddresses tvlUsd history"));
        rows("l2.0.", false, text, keys("historyWindowMinutes rpc blockTimeSec"));
        rows("staking.", true, QJsonArray(), keys("liquidStaking"));
        rows("staking.liquidStaking.", true, text, keys("protocols provenance"));
        rows("staking.liquidStaking.", false, text, keys("totalEthEquivalent shareOfTotalStaked"));
        rows("staking.liquidStaking.provenance.", true, number, keys("status source detail"));
        const char* const protocol = "staking.liquidStaking.protocols.0.";
        rows(protocol, true, number, keys("protocol token provenance"));
        rows(protocol, false, text, keys("tokenSupply exchangeRate ethEquivalent shareOfTotalStaked"));
        rows("staking.liquidStaking.protocols.0.provenance.", true, number, keys("status source detail"));
    }

    void everyKeyIsCheckedForPresenceAndType() {
        QFETCH(bool, required);
        QFETCH(QJsonValue, wrong);
        const QString place = QString::fromLatin1(QTest::currentDataTag());
        const QByteArray path = place.toLatin1().replace(".0.", "[0].");
        const QByteArray expected = required ? path : QByteArray("ok");
        QCOMPARE(outcome(fullDocumentWith(place, QJsonValue::Undefined)), expected);
        QCOMPARE(outcome(fullDocumentWith(place, QJsonValue::Null)), expected);
        QCOMPARE(outcome(fullDocumentWith(place, wrong)), path);
        QCOMPARE(outcome(fullDocumentWith(place, true)), path);
        QCOMPARE(outcome(fullDocumentWith(place, QJsonObject{{place, 1}})).left(path.size()), path);
    }

    void aBadListElementFailsTheDocument_data() {
        QTest::addColumn<QJsonValue>("element");
        QTest::addColumn<QByteArray>("path");
        const auto row = [](const char* place, const QJsonValue& element, const char* path) {
            QTest::newRow(place) << element << QByteArray(path);
        };
        row("gas.history.1", QStringLiteral("1"), "gas.history[1]");
        row("gas.history.2", QJsonValue::Null, "gas.history[2]");
        row("l2.1", QJsonValue::Null, "l2[1]");
        row("l2.1", QJsonObject{{QStringLiteral("name"), QStringLiteral("a")}}, "l2[1].tag");
        row("l2.0.history.0", QJsonArray{1}, "l2[0].history[0]");
        row("l2.0.rpc.1", 5, "l2[0].rpc[1]");
        row("staking.liquidStaking.protocols.0", QStringLiteral("Alpha"), "staking.liquidStaking.protocols[0]");
    }

    void aBadListElementFailsTheDocument() {
        QFETCH(QJsonValue, element);
        QFETCH(QByteArray, path);
        QCOMPARE(outcome(fullDocumentWith(QString::fromLatin1(QTest::currentDataTag()), element)), path);
    }

    void aDocumentWithoutStakingFails() {
        QCOMPARE(outcome(fullDocumentWith(QStringLiteral("staking"), QJsonValue::Undefined)), "staking");
    }

    void everyRecordComesBackAsItWasEncoded() {
        const Snapshot full = fullSnapshot();
        QVERIFY(comesBack(full));
        QVERIFY(comesBack(full.price) && comesBack(PriceData{}));
        QVERIFY(comesBack(full.gas) && comesBack(GasData{}));
        QVERIFY(comesBack(full.l2.at(0)) && comesBack(full.l2.at(1)));
        QVERIFY(comesBack(full.staking) && comesBack(StakingData{}));
        QVERIFY(comesBack(full.staking.liquidStaking) && comesBack(LiquidStakingData{}));
        QVERIFY(comesBack(full.staking.liquidStaking.protocols.at(0)) && comesBack(LiquidStakingProtocol{}));
        QVERIFY(comesBack(full.staking.liquidStaking.provenance));
    }

    void aNetworkIsWrittenKeyByKeyInOrder() {
        QCOMPARE(JSON::encode(fullEntry()),
                 "{\"name\":\"Arbitrum\",\"tag\":\"ARB\",\"costUsd\":0.0012,\"costGwei\":0.01,\"status\":\"Normal\","
                 "\"txCount\":1234,\"dailyActiveAddresses\":56789,\"tvlUsd\":1.5e+10,\"history\":[0.01,0.02,0.0125],"
                 "\"historyWindowMinutes\":1440,\"rpc\":[\"https://one.example\",\"https://two.example\"],"
                 "\"blockTimeSec\":0.25}");
    }

    void aProtocolIsWrittenKeyByKeyInOrder() {
        QCOMPARE(JSON::encode(fullSnapshot().staking.liquidStaking.protocols.at(0)),
                 "{\"protocol\":\"Alpha\",\"token\":\"aETH\",\"tokenSupply\":1e+06,\"exchangeRate\":1.05,"
                 "\"ethEquivalent\":1050000,\"shareOfTotalStaked\":0.03,"
                 "\"provenance\":{\"status\":\"live\",\"source\":\"contract\",\"detail\":\"read on the chain\"}}");
    }

    void theOtherRecordsAreWrittenKeyByKeyInOrder() {
        const QByteArray bytes = JSON::encode(fullSnapshot());
        QVERIFY(bytes.startsWith(
            "{\"generatedAt\":\"2026-01-15T12:34:56.789Z\","
            "\"price\":{\"eth\":3456.78,\"change24h\":-1.26,\"chainlinkEth\":3455.9,\"sourceSpreadPct\":0.025},"
            "\"gas\":{\"baseFee\":0.81,\"low\":0.83,\"avg\":0.9,\"high\":1.4,\"history\":[0.8,0.7,0.9],"
            "\"feeTransferUsd\":0.059,\"feeSwapUsd\":0.42},\"l2\":[{\"name\":\"Arbitrum\","));
        QVERIFY(bytes.contains("\"staking\":{\"liquidStaking\":{\"protocols\":[{\"protocol\":"));
        QVERIFY(bytes.endsWith(
            "],\"totalEthEquivalent\":12345678.9,\"shareOfTotalStaked\":0.33,"
            "\"provenance\":{\"status\":\"live\",\"source\":\"sum\",\"detail\":\"read on the chain\"}}}}"));
    }

    void aNetworkOfThreeKeysHasNothingElse() {
        const auto entry = JSON::decode<L2Entry>("{\"name\":\"Base\",\"tag\":\"BASE\",\"status\":\"Normal\"}");
        QCOMPARE(entry.status, QStringLiteral("Normal"));
        QVERIFY(!entry.costUsd && !entry.costGwei && !entry.txCount && !entry.dailyActiveAddresses && !entry.tvlUsd);
        QVERIFY(!entry.history && !entry.historyWindowMinutes && !entry.rpc && !entry.blockTimeSec);
    }

    void absenceIsNoEmptyList() {
        const QByteArray bytes = JSON::encode(fullSnapshot());
        const Snapshot snapshot = JSON::decode<Snapshot>(bytes);
        QVERIFY(!snapshot.l2.at(1).rpc && !snapshot.l2.at(1).history);
        L2Entry entry = bareEntry();
        entry.rpc = QList<QString>();
        QVERIFY(JSON::decode<L2Entry>(JSON::encode(entry)).rpc->isEmpty());
    }

    void emptyListsAreLists() {
        const QByteArray bytes = fullDocumentWith(QStringLiteral("l2"), QJsonArray());
        QVERIFY(JSON::decode<Snapshot>(bytes).l2.isEmpty());
        QCOMPARE(outcome(fullDocumentWith(QStringLiteral("gas.history"), QJsonArray())), "ok");
    }

    void nullAndMissingAreTheSameAbsence() {
        const QString place = QStringLiteral("l2.0.costGwei");
        QVERIFY(!JSON::decode<Snapshot>(fullDocumentWith(place, QJsonValue::Null)).l2.at(0).costGwei);
        QVERIFY(!JSON::decode<Snapshot>(fullDocumentWith(place, QJsonValue::Undefined)).l2.at(0).costGwei);
    }

    void integersAreNumbers() {
        const QByteArray bytes = fullDocumentWith(QStringLiteral("l2.0.txCount"), 1234);
        QCOMPARE(JSON::decode<Snapshot>(bytes).l2.at(0).txCount, 1234.0);
        const QByteArray large = JSON::encode(fullSnapshot()).replace("1.5e+10", "184467440737095516160");
        QCOMPARE(JSON::decode<Snapshot>(large).l2.at(0).tvlUsd, 184467440737095516160.0);
    }

    void numbersTooLargeFailTheDocument() {
        QCOMPARE(outcome(JSON::encode(fullSnapshot()).replace("3456.78", "1e400")), "price.eth");
    }

    void valuesAreTakenAsTheyAre() {
        const QByteArray bytes =
            JSON::encode(fullSnapshot()).replace("3456.78", "-1e-7").replace("\"Normal\"", "\"Odd\"");
        const Snapshot snapshot = JSON::decode<Snapshot>(bytes);
        QCOMPARE(snapshot.price.eth, -1e-7);
        QCOMPARE(snapshot.l2.at(0).status, QStringLiteral("Odd"));
        QCOMPARE(snapshot.generatedAt, QStringLiteral("2026-01-15T12:34:56.789Z"));
    }

    void networksKeepTheirOrder() {
        const Snapshot snapshot = JSON::decode<Snapshot>(JSON::encode(fullSnapshot()));
        QCOMPARE(snapshot.l2.at(0).name, QStringLiteral("Arbitrum"));
        QCOMPARE(snapshot.l2.at(1).name, QStringLiteral("Base"));
    }

    void theFirstOfManyErrorsIsNamedInTheOrderOfTheTable() {
        QByteArray bytes = JSON::encode(fullSnapshot());
        bytes.replace("12345678.9", "true").replace("0.83", "\"a\"").replace("\"ARB\"", "null");
        QCOMPARE(outcome(bytes), "gas.low");
    }

    void copiesShareTheirHistory() {
        const Snapshot snapshot = fullSnapshot();
        const Snapshot copy = snapshot;
        QCOMPARE(copy.gas.history.constData(), snapshot.gas.history.constData());
        QCOMPARE(copy.l2.at(0).history->constData(), snapshot.l2.at(0).history->constData());
    }
};

QTEST_GUILESS_MAIN(SnapshotTest)
#include "SnapshotTest.moc"
