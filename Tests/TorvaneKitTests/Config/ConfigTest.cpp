#include "Model/Config.h"

#include <QTest>

#include <thread>
#include <vector>

using namespace torvane;

/// The Config that programs link, with addresses of this test's own (see CMakeLists.txt).
class ConfigTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstReadsFromManyThreadsGiveOneValue() {
        std::vector<const QUrl*> seen(8);
        {
            std::vector<std::jthread> threads;
            for (const QUrl*& slot : seen)
                threads.emplace_back([&slot] { slot = &Config::snapshotURL(); });
        }
        for (const QUrl* url : seen)
            QCOMPARE(url, &Config::snapshotURL());
    }

    void snapshotAndFeedLieOnTheRelay() {
        QCOMPARE(Config::snapshotURL(), QUrl(QStringLiteral("https://relay.example:444/snapshot.json")));
        QCOMPARE(Config::appcastURL(), QUrl(QStringLiteral("https://relay.example:444/torvane/appcast.xml")));
    }

    void theGasTrackerLiesOnTheExplorer() {
        QCOMPARE(Config::etherscanGasURL(), QUrl(QStringLiteral("https://explorer.example/gastracker")));
    }

    void thereAreTwoEthereumEndpointsPrimaryFirst() {
        QCOMPARE(Config::ethereumRPCURLs(),
                 QStringList({QStringLiteral("https://one.example"), QStringLiteral("https://two.example")}));
    }

    void theVersionIsTheProjects() { QCOMPARE(Config::currentVersion(), QStringLiteral(TORVANE_VERSION)); }

    void aRelativeTrustAnchorLiesBelowTheUsersDataAndNeverBelowTheWorkingDirectory() {
        qputenv("HOME", "/home/of test");
        qputenv("XDG_DATA_HOME", "relative");
        QCOMPARE(Config::trustAnchorPath(), QStringLiteral("/home/of test/.local/share/velisk/anchor.pem"));
    }
};

QTEST_GUILESS_MAIN(ConfigTest)
#include "ConfigTest.moc"
