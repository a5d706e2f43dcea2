#include "ReadingFixture.h"

#include <cmath>
#include <limits>

using namespace torvane;

/// All that is read, against nodes that answer what is easy to work out.
class ReadingTest final : public ReadingFixture {
    Q_OBJECT

    RelayTable ethereumWithoutStaking() const {
        RelayTable table = ethereumAlone();
        table.staking.clear();
        return table;
    }

private Q_SLOTS:
    void everyFigureOfEthereumIsTheOneWorkedOutByHand() {
        const RelayTable table = ethereumAlone();
        const Reading reading = read(table);
        QCOMPARE(reading.trouble, QString());
        QCOMPARE(reading.block, quint64{1144});
        const Figures expected{
            {QStringLiteral("ether"), QStringLiteral("3000")},
            {QStringLiteral("change"), QString::number(100.0 * 72 / 2928, 'g', 12)},
            {QStringLiteral("pool"), QString::number(1e12 / std::pow(1.0001, 196000), 'g', 12)},
            {QStringLiteral("base fee"), QStringLiteral("10.47146")},
            {QStringLiteral("low"), QStringLiteral("11.47146")},
            {QStringLiteral("average"), QStringLiteral("12.47146")},
            {QStringLiteral("high"), QStringLiteral("13.47146")},
            {QStringLiteral("points"), QStringLiteral("22")}, // 1145 blocks, fifty each; 45 of the first are left out.
            {QStringLiteral("stETH supply"), QStringLiteral("2000")},
            {QStringLiteral("stETH rate"), QStringLiteral("1")},
            {QStringLiteral("stETH ether"), QStringLiteral("2000")},
            {QStringLiteral("rETH supply"), QStringLiteral("1000")},
            {QStringLiteral("rETH rate"), QStringLiteral("1.125")},
            {QStringLiteral("rETH ether"), QStringLiteral("1125")},
            {QStringLiteral("mETH supply"), QStringLiteral("4000")},
            {QStringLiteral("mETH rate"), QStringLiteral("1.0625")},
            {QStringLiteral("mETH ether"), QStringLiteral("4250")},
        };
        QCOMPARE(figuresOf(reading, table), expected);
    }

    void everyFigureOfTheNetworksIsTheOneWorkedOutByHand() {
        RelayTable table = m_world->table();
        table.staking.clear();
        const Figures figures = figuresOf(read(table), table);
        Figures expected{
            {QStringLiteral("Arbitrum cost"), QStringLiteral("1.5e-07")},
            {QStringLiteral("Base cost"), QStringLiteral("1.626e-06")},
            {QStringLiteral("Scroll cost"), QStringLiteral("2.126e-06")},
            {QStringLiteral("Linea cost"), QStringLiteral("1.5e-06")},
            {QStringLiteral("Starknet cost"), QStringLiteral("none")},
            {QStringLiteral("Starknet price"), QStringLiteral("4.25")},
            {QStringLiteral("Starknet seconds"), QStringLiteral("3")},
            {QStringLiteral("Starknet endpoints"), QStringLiteral("none")},
        };
        for (const char* name : {"Arbitrum", "Base", "Scroll", "Linea"}) {
            expected.insert(QLatin1String(name) + QStringLiteral(" price"), QStringLiteral("0.006"));
            expected.insert(QLatin1String(name) + QStringLiteral(" seconds"), QStringLiteral("2"));
            expected.insert(QLatin1String(name) + QStringLiteral(" endpoints"), QStringLiteral("1"));
        }
        const Figures ethereum = figuresOf(Reading{}, ethereumWithoutStaking());
        for (const QString& name : figures.keys())
            QCOMPARE(ethereum.contains(name) ? QString() : figures[name], expected.value(name));
        QCOMPARE(figures.size(), expected.size() + ethereum.size());
    }

    /// The blocks of a group have the hundredths 0 to 49, 0.245 in the mean, and the group that ends with block e has
    /// e - 24.5 hundred-thousandths.
    void theBaseFeesAreMeansOfFiftyBlocksOldestFirst() {
        const QList<double> history = read(ethereumAlone()).baseFeeHistory.points;
        for (qsizetype i = 0; i < history.size(); ++i) {
            const double newest = 1144.0 - 50 * static_cast<double>(history.size() - 1 - i);
            QCOMPARE(history[i], 10.245 + (newest - 24.5) / 100'000);
        }
        // The node gives 400 blocks at once.
        QCOMPARE(m_world->chain(QStringLiteral("Ethereum")).asked()[QStringLiteral("eth_feeHistory earlier")], 3);
    }

    void thePriceOfADayAgoTakesAboutEightQuestions() {
        read(ethereumAlone());
        const int asked =
            m_world->chain(QStringLiteral("Ethereum")).asked()[QStringLiteral("getRoundData(uint80) of 0x5f4e")];
        QVERIFY2(asked <= 8, qPrintable(QString::number(asked)));
    }

    void aNodeOfAnotherChainIsNotBelieved() {
        m_world->chain(QStringLiteral("Base")).always(QStringLiteral("eth_chainId"), hex(10));
        const NetworkReading row = readRow(networkNamed(QStringLiteral("Base"), m_world->table()));
        QVERIFY(!row.priceGwei);
        QCOMPARE(row.trouble, QStringLiteral("localhost: it serves another chain"));
        m_world->chain(QStringLiteral("Ethereum")).always(QStringLiteral("eth_chainId"), hex(11155111));
        QVERIFY(read(ethereumAlone()).trouble.contains(QLatin1String("it serves another chain")));
    }

    void aNodeThatStoodStillIsNotBelieved() {
        StandInChain& node = m_world->chain(QStringLiteral("Ethereum"));
        node.always(QStringLiteral("eth_getBlockByNumber latest"),
                    blockAt(1000, StandInWorld::now().toSecsSinceEpoch() - 3600));
        QVERIFY(read(ethereumAlone()).trouble.contains(QLatin1String("its newest block is not of now")));
    }

    void theBlockIsOneThatAllNodesHave() {
        m_second->chain(QStringLiteral("Ethereum"))
            .always(QStringLiteral("eth_getBlockByNumber latest"),
                    blockAt(1140, StandInWorld::now().toSecsSinceEpoch()));
        RelayTable table = ethereumAlone();
        table.ethereum.endpoints.append(m_second->table().ethereum.endpoints);
        QCOMPARE(read(table).block, quint64{1138});
    }

    void aPriceOfMoreThanTwoHoursAgoIsNotBelieved() {
        RequestGate gate(wide);
        const QDateTime late = StandInWorld::now().addSecs(2 * 3600 - 599);
        m_world->chain(QStringLiteral("Ethereum"))
            .always(QStringLiteral("eth_getBlockByNumber latest"), blockAt(1146, late.toSecsSinceEpoch()));
        const Reading reading = await(readAll(gate, ethereumAlone(), late));
        QVERIFY(!reading.price);
        QCOMPARE(reading.trouble, QStringLiteral("no price of ether: the price feed is more than two hours old"));
        // A second before, it is.
        QVERIFY(await(readAll(gate, ethereumAlone(), late.addSecs(-1))).price);
    }

    /// Newer feeds refuse to answer for rounds that are not there, older ones answer zeros.
    void aFeedThatIsYoungerThanADayHasNoChange() {
        const QString feed = m_world->table().ethereum.priceFeed;
        StandInChain& node = m_world->chain(QStringLiteral("Ethereum"));
        for (const QList<Word>& none : {QList<Word>(), QList<Word>(5)}) {
            node.onCall(feed, QStringLiteral("getRoundData(uint80)"), none);
            const Reading reading = read(ethereumAlone());
            QVERIFY(!reading.price);
            QCOMPARE(reading.trouble, QStringLiteral("no price of ether: the price feed has no price of a day ago"));
        }
    }

    void anAnswerAboutAnotherRoundIsNotBelieved() {
        const auto old = static_cast<quint64>(StandInWorld::now().toSecsSinceEpoch() - 2 * 24 * 3600);
        m_world->chain(QStringLiteral("Ethereum"))
            .onCall(m_world->table().ethereum.priceFeed, QStringLiteral("getRoundData(uint80)"),
                    {Word(7, 1000), Word(quint64{1}), Word(old), Word(old), Word(7, 1000)});
        QCOMPARE(read(ethereumAlone()).trouble,
                 QStringLiteral("no price of ether: the price feed has no price of a day ago"));
    }

    void ticksBeyondAllBoundsGiveNoSecondPrice() {
        const QByteArray lowest = QByteArray(24, '\xff') + '\x80' + QByteArray(7, '\0');
        const Word least{QByteArrayView(lowest)};
        const Word most(static_cast<quint64>(std::numeric_limits<qint64>::max()));
        for (const auto& [earlier, later] : {std::pair(least, most), std::pair(most, least)}) {
            m_world->chain(QStringLiteral("Ethereum"))
                .onCall(m_world->table().ethereum.pricePool, QStringLiteral("observe(uint32[])"),
                        {Word(quint64{64}), Word(quint64{160}), Word(quint64{2}), earlier, later});
            const Reading reading = read(ethereumAlone());
            QVERIFY(reading.price && !reading.poolPrice);
        }
    }

    void aSilentPrimaryIsMadeUpForAfterItsTimeIsUp() {
        m_world->chain(QStringLiteral("Ethereum"))
            .misbehave(QStringLiteral("latestRoundData() of 0x5f4e"), StandInAnswer::silent());
        RelayTable table = ethereumAlone();
        table.ethereum.endpoints.append(m_second->table().ethereum.endpoints);
        QCOMPARE(read(table).price->usd, 3000.0);
    }

    void whatAStrangerSaysFitsInALine() {
        m_world->chain(QStringLiteral("Base"))
            .misbehave(QStringLiteral("eth_gasPrice"),
                       StandInAnswer::ok("{\"error\":{\"code\":-1,\"message\":\"slow\\n\\tdown \\u001b[31m!" +
                                         QByteArray(500, 'x') + "\"}}"));
        const NetworkReading row = readRow(networkNamed(QStringLiteral("Base"), m_world->table()));
        QVERIFY(row.trouble.startsWith(QStringLiteral("localhost: error -1, slow down [31m!xxx")));
        QVERIFY(row.trouble.size() < 200);
    }

    void aPoolWithAShortMemoryIsAskedForThePriceOfTheMoment() {
        const QString pool = m_world->table().ethereum.pricePool;
        StandInChain& node = m_world->chain(QStringLiteral("Ethereum"));
        node.onCall(pool, QStringLiteral("observe(uint32[])"), QList<Word>());
        // The square root of 0.00000000025 in units of 2^-96: one ether is 4000 dollars, 1e12 / 4000 = 2.5e8.
        const auto root = static_cast<quint64>(std::sqrt(2.5e8) * 0x1p32);
        node.onCall(pool, QStringLiteral("slot0()"), {Word(root, 0)});
        QVERIFY(std::abs(*read(ethereumAlone()).poolPrice - 4000) < 0.001);
    }

    void anOlderNetworkWithoutAnOperatorsFeeHasNone() {
        m_world->chain(QStringLiteral("Base"))
            .onCall(QStringLiteral("0x420000000000000000000000000000000000000F"),
                    QStringLiteral("getOperatorFee(uint256)"), QList<Word>());
        const NetworkReading row = readRow(networkNamed(QStringLiteral("Base"), m_world->table()));
        QCOMPARE(*row.transferEther, 1.126e-6);
    }

    void aContractThatIsNotThereIsNoFaultOfTheNodes() {
        RelayTable table = ethereumAlone();
        for (const char* answer : {"totalSupply() of 0xae78", "getExchangeRate() of 0xae78", "totalSupply() of 0xae7a"})
            m_world->chain(QStringLiteral("Ethereum")).always(QLatin1String(answer), QStringLiteral("0x"));
        const Reading reading = read(table);
        QVERIFY(reading.price && reading.gas && reading.poolPrice);
        QVERIFY(!reading.protocols[0].tokenSupply && !reading.protocols[1].exchangeRate);
        QCOMPARE(*reading.protocols[2].tokenSupply, 4000.0);
    }

    void aNodeThatFailedTwiceIsLeftInPeace() {
        StandInChain& node = m_world->chain(QStringLiteral("Ethereum"));
        node.misbehave(QStringLiteral("totalSupply() of 0xae7a"), StandInAnswer::status(503));
        RelayTable table = ethereumAlone();
        for (int i = 0; i < 10; ++i)
            table.staking.append(table.staking.first()); // Ten more questions that fail.
        table.ethereum.endpoints.append(m_second->table().ethereum.endpoints);
        table.requestsAtOncePerHost = 1;
        RequestGate gate({1, 1, 1e6});
        const Reading reading = await(readAll(gate, table, StandInWorld::now()));
        QCOMPARE(node.asked()[QStringLiteral("totalSupply() of 0xae7a")], 2);
        QCOMPARE(reading.protocols.last().tokenSupply.value_or(0), 2000.0);
    }

    void nobodyIsAskedWhatNoNodeKnows() {
        const RelayTable table = m_world->table();
        read(table);
        for (const QString& name : m_world->names()) {
            StandInChain& chain = m_world->chain(name);
            for (const QString& question : chain.asked().keys())
                QVERIFY2(chain.questions().contains(question), qPrintable(name + u' ' + question));
        }
    }

private:
    static RelayTable::Network networkNamed(const QString& name, const RelayTable& table) {
        for (const RelayTable::Network& network : table.networks) {
            if (network.name == name)
                return network;
        }
        qFatal("There is no such network");
    }
};

QTEST_GUILESS_MAIN(ReadingTest)
#include "ReadingTest.moc"
