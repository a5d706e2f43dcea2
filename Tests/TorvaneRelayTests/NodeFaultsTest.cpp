#include "NodeFaults.h"

#include "ReadingFixture.h"

using namespace torvane;

/// Every fault of real nodes at every question.
class NodeFaultsTest final : public ReadingFixture {
    Q_OBJECT

private Q_SLOTS:
    void aFaultAtOneQuestionToEthereumCostsItsFigureAlone_data() { addQuestions({QStringLiteral("Ethereum")}); }

    void aFaultAtOneQuestionToEthereumCostsItsFigureAlone() {
        QFETCH(QString, question);
        const RelayTable table = ethereumAlone();
        const Figures good = figuresOf(read(table), table);
        const bool costsAll = missingWithout(question).isEmpty();
        for (const auto& [name, fault] : NodeFaults::all()) {
            m_world->chain(QStringLiteral("Ethereum")).misbehave(question, fault);
            const Reading reading = read(table);
            const Figures figures = figuresOf(reading, table);
            const bool isComplete = reading.price && reading.gas;
            QVERIFY2(isComplete || !reading.trouble.isEmpty(), name);
            if (costsAll) {
                QVERIFY2(!reading.price && !reading.gas, name);
                continue;
            }
            QVERIFY2(differing(good, figures) == missingWithout(question),
                     qPrintable(QLatin1String(name) + QStringLiteral(": ") + differing(good, figures).join(u',')));
            for (const QString& missing : missingWithout(question))
                QCOMPARE(figures[missing], QStringLiteral("none"));
        }
    }

    void aFaultAfterAGoodPageOfBaseFeesLeavesThemIncomplete() {
        const RelayTable table = ethereumAlone();
        const BaseFeeHistory whole = read(table).baseFeeHistory;
        QVERIFY(whole.isWhole);
        for (const auto& [name, fault] : NodeFaults::all()) {
            m_world->chain(QStringLiteral("Ethereum")).misbehave(QStringLiteral("eth_feeHistory earlier"), fault, 1);
            const BaseFeeHistory part = read(table).baseFeeHistory;
            QVERIFY2(!part.isWhole, name);
            QVERIFY2(part.points == whole.points.last(8), name); // Of 400 blocks.
        }
    }

    void aFaultAtThePrimaryIsMadeUpForByTheFallback_data() { addQuestions({QStringLiteral("Ethereum")}); }

    void aFaultAtThePrimaryIsMadeUpForByTheFallback() {
        QFETCH(QString, question);
        RelayTable table = ethereumAlone();
        const Figures good = figuresOf(read(table), table);
        table.ethereum.endpoints.append(m_second->table().ethereum.endpoints);
        for (const auto& [name, fault] : NodeFaults::oneOfEachKind()) {
            m_world->chain(QStringLiteral("Ethereum")).misbehave(question, fault);
            const Figures figures = figuresOf(read(table), table);
            QVERIFY2(differing(good, figures).isEmpty(),
                     qPrintable(QLatin1String(name) + QStringLiteral(": ") + differing(good, figures).join(u',')));
        }
    }

    void aFaultAtANetworksQuestionCostsItsFigureAlone_data() { addQuestions(networks()); }

    void aFaultAtANetworksQuestionCostsItsFigureAlone() {
        QFETCH(QString, chain);
        QFETCH(QString, question);
        RelayTable::Network network = networkNamed(chain, m_world->table());
        const Figures good = figuresOf(readRow(network));
        QStringList expected = missingInRowWithout(question);
        expected.removeIf([&good](const QString& name) { return good[name] == QLatin1String("none"); });
        for (const auto& [name, fault] : NodeFaults::all()) {
            m_world->chain(chain).misbehave(question, fault);
            const NetworkReading reading = readRow(network);
            QVERIFY2(differing(good, figuresOf(reading)) == expected,
                     qPrintable(QLatin1String(name) + QStringLiteral(": ") +
                                differing(good, figuresOf(reading)).join(u',')));
            for (const QString& missing : expected)
                QCOMPARE(figuresOf(reading)[missing], QStringLiteral("none"));
            QVERIFY2(reading.trouble.contains(QLatin1String("localhost: ")), name);
        }
    }

    void aFaultAtANetworksFirstNodeIsMadeUpForByTheSecond_data() { addQuestions(networks()); }

    void aFaultAtANetworksFirstNodeIsMadeUpForByTheSecond() {
        QFETCH(QString, chain);
        QFETCH(QString, question);
        RelayTable::Network network = networkNamed(chain, m_world->table());
        const QString first = network.endpoints.first();
        network.endpoints.append(networkNamed(chain, m_second->table()).endpoints);
        const Figures good = figuresOf(readRow(network));
        const bool isGreeting = question == QLatin1String("eth_chainId") || question == QLatin1String("eth_gasPrice");
        for (const auto& [name, fault] : NodeFaults::oneOfEachKind()) {
            m_world->chain(chain).misbehave(question, fault);
            const NetworkReading reading = readRow(network);
            // velisk is sent only to nodes that answered what it will ask.
            const QStringList expected = isGreeting ? QStringList{QStringLiteral("endpoints")} : QStringList();
            QVERIFY2(differing(good, figuresOf(reading)) == expected, name);
            QVERIFY2(!isGreeting || !reading.endpoints.contains(first), name);
        }
    }

    void aNetworkThatIsGoneTouchesNoOtherRow() {
        const RelayTable table = m_world->table();
        const Figures good = figuresOf(read(table), table);
        for (const QString& name : networks()) {
            m_world->chain(name).server().stop();
            const Reading reading = read(table);
            for (const QString& figure : differing(good, figuresOf(reading, table)))
                QVERIFY2(figure.startsWith(name + QLatin1Char(' ')), qPrintable(figure));
            m_world->chain(name).server().start();
        }
    }

private:
    QStringList networks() const {
        return {QStringLiteral("Arbitrum"), QStringLiteral("Base"), QStringLiteral("Scroll"), QStringLiteral("Linea"),
                QStringLiteral("Starknet")};
    }

    static RelayTable::Network networkNamed(const QString& name, const RelayTable& table) {
        for (const RelayTable::Network& network : table.networks) {
            if (network.name == name)
                return network;
        }
        qFatal("There is no such network");
    }

    void addQuestions(const QStringList& chains) {
        QTest::addColumn<QString>("chain");
        QTest::addColumn<QString>("question");
        StandInWorld world;
        for (const QString& chain : chains) {
            for (const QString& question : world.chain(chain).questions())
                QTest::newRow(qPrintable(chain + QStringLiteral(": ") + question)) << chain << question;
        }
    }
};

QTEST_GUILESS_MAIN(NodeFaultsTest)
#include "NodeFaultsTest.moc"
