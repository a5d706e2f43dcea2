#include "RelayTable.h"

#include <QTest>

using namespace torvane;

namespace {

QByteArray builtInWith(const QByteArray& part, const QByteArray& replacement) {
    QByteArray table = RelayTable::builtIn();
    const qsizetype place = table.indexOf(part);
    if (place < 0)
        qFatal("This part is not there");
    return table.replace(place, part.size(), replacement);
}

QString complaintAbout(const QByteArray& table) {
    try {
        static_cast<void>(RelayTable::read(table));
        return QStringLiteral("none");
    } catch (const TableError& error) {
        return QString::fromUtf8(error.what());
    }
}

} // namespace

class RelayTableTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theBuiltInTableNamesTheNetworksThatVeliskKnows() {
        const RelayTable table = RelayTable::read(RelayTable::builtIn());
        QStringList names;
        for (const RelayTable::Network& network : table.networks) {
            names.append(network.name);
            QCOMPARE(network.endpoints.size(), 2);
        }
        QCOMPARE(names, QStringList({QStringLiteral("Arbitrum"), QStringLiteral("Optimism"), QStringLiteral("Base"),
                                     QStringLiteral("Robinhood Chain"), QStringLiteral("Unichain"),
                                     QStringLiteral("zkSync Era"), QStringLiteral("Scroll"), QStringLiteral("Linea"),
                                     QStringLiteral("Starknet")}));
        QCOMPARE(table.networks[2].chainId, QStringLiteral("0x2105"));
        QCOMPARE(table.networks[2].transfer, TransferModel::opStack);
        QCOMPARE(table.networks[8].chainId, QStringLiteral("0x534e5f4d41494e"));
        QCOMPARE(table.minutesBetweenRuns, 5.0);
        QCOMPARE(table.staking.size(), 5);
        QCOMPARE(table.staking[0].rate, QString());
        QCOMPARE(table.staking[1].rateContract, table.staking[1].contract);
        QCOMPARE(table.staking[4].rateContract, QStringLiteral("0xe3cBd06D7dadB3F4e6557bAb7EdD924CD1489E8f"));
    }

    void theRowsThatAreCommentedOutAreGoodToo() {
        QByteArray table = RelayTable::builtIn();
        const qsizetype from = table.indexOf("# [[staking]]");
        table = table.first(from) + table.sliced(from).replace("# ", "").replace("\n#\n", "\n");
        QCOMPARE(RelayTable::read(table.replace("a part of its", "# a part of its")).staking.size(), 8);
    }

    void aMistakeIsNamedWithItsLineAndKey_data() {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("complaint");
        const auto row = [](const char* name, const QByteArray& table, const char* complaint) {
            QTest::newRow(name) << table << QString::fromLatin1(complaint);
        };
        row("not TOML", builtInWith("minutes = 5", "minutes = = 5"), "line 8: ");
        row("a word for a number", builtInWith("minutes = 5", "minutes = \"five\""),
            "line 8: run.minutes: expected a number");
        row("no time at all", builtInWith("minutes = 5", "minutes = 0"), "run.minutes: expected a number from 1");
        row("half a request", builtInWith("at_once = 12", "at_once = 1.5"),
            "requests.at_once: expected a whole number");
        row("a key that means nothing", builtInWith("at_once = 12", "atonce = 12"), "requests.at_once: missing");
        row("one key too many", builtInWith("at_once = 12", "at_once = 12\nretries = 3"),
            "requests.retries: means nothing");
        row("a mistyped address", builtInWith("0x5f4eC3Df", "0x5f4eC3De"), "ethereum.price_feed: not an address");
        row("plain http", builtInWith("https://arb1", "http://arb1"),
            "network[0].endpoints: \"http://arb1.arbitrum.io/rpc\"");
        row("no endpoints", builtInWith("[\"https://mainnet.base.org\", \"https://base-rpc.publicnode.com\"]", "[]"),
            "network[2].endpoints: expected a list");
        row("an unknown way", builtInWith("\"estimate\"", "\"guess\""), "network[0].transfer: none of the ways");
        row("a number for a name", builtInWith("name = \"Arbitrum\"", "name = 1"), "network[0].name: expected a text");
        row("a chain beyond all integers", builtInWith("chain_id = 10\n", "chain_id = 59e144\n"),
            "network[1].chain_id: expected a whole");
        row("a negative chain", builtInWith("chain_id = 10\n", "chain_id = -10\n"),
            "network[1].chain_id: expected a whole");
        row("a network twice", builtInWith("\"Optimism\"", "\"Arbitrum\""), "network \"Arbitrum\" is there twice");
        row("no function", builtInWith("\"exchangeRate()\"", "\"exchangeRate\""), "staking[2].rate: not a function");
        row("a function of something else", builtInWith("\"exchangeRate()\"", "\"exchangeRate(address)\""),
            "staking[2].rate: not a function");
        row("a table for tables", builtInWith("[[network]]", "[network]"), "line ");
        row("nothing", QByteArray(), "run: missing");
    }

    void aMistakeIsNamedWithItsLineAndKey() {
        QFETCH(QByteArray, table);
        QFETCH(QString, complaint);
        const QString said = complaintAbout(table);
        QVERIFY2(said.contains(complaint), qPrintable(said));
    }
};

QTEST_GUILESS_MAIN(RelayTableTest)
#include "RelayTableTest.moc"
