#include "Badge/BadgeText.h"

#include "Support/SimulatedMarket.h"

#include <QTemporaryDir>
#include <QTest>

using namespace torvane;

namespace {

Snapshot snapshot() {
    Snapshot result = SimulatedMarket::at(QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC));
    result.gas.low = 12.34;
    result.gas.high = 99.5;
    result.price.eth = 3000;
    result.l2[2].costGwei = 0.0123;
    result.l2[2].costUsd = 0.004;
    return result;
}

} // namespace

class BadgeTextTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_settings.reset();
        m_home = std::make_unique<QTemporaryDir>();
        m_defaults = std::make_unique<UserDefaults>(m_home->filePath(QStringLiteral("preferences.json")),
                                                    m_home->filePath(QStringLiteral("cache")));
        m_settings = std::make_unique<AppSettings>(*m_defaults);
    }

    void withoutASnapshotThereIsNoFigure() {
        const BadgeLook expected{{}, QStringLiteral("Ethereum"), QStringLiteral("No figures yet")};
        QCOMPARE(badgeLook({}, *m_settings), expected);
    }

    void ethereumsFigureStandsBareAndIsExplainedInWords() {
        const BadgeLook expected{QStringLiteral("12.3"), QStringLiteral("Ethereum"), QStringLiteral("Low: 12.3 gwei")};
        QCOMPARE(badgeLook(snapshot(), *m_settings), expected);
    }

    void theUsersSourceAndUnitAreFollowed() {
        m_settings->badgeSource = BadgeSource::high;
        m_settings->denom = Denomination::usd;
        const BadgeLook expected{QStringLiteral("$6.27"), QStringLiteral("Ethereum"),
                                 QStringLiteral("High: $6.27 a transfer")};
        QCOMPARE(badgeLook(snapshot(), *m_settings), expected);
    }

    void aLayer2NetworkHasItsOwnFigure() {
        m_settings->badgeChain = BadgeChain::l2(QStringLiteral("Base"));
        const BadgeLook inGwei{QStringLiteral("0.012 gwei"), QStringLiteral("Base"), QStringLiteral("0.012 gwei")};
        QCOMPARE(badgeLook(snapshot(), *m_settings), inGwei);
        m_settings->denom = Denomination::usd;
        const BadgeLook inDollars{QStringLiteral("<$0.01"), QStringLiteral("Base"), QStringLiteral("<$0.01")};
        QCOMPARE(badgeLook(snapshot(), *m_settings), inDollars);
    }

    void anUnknownNetworkHasADash() {
        m_settings->badgeChain = BadgeChain::l2(QStringLiteral("Atlantis"));
        const BadgeLook expected{QStringLiteral("—"), QStringLiteral("Atlantis"), QStringLiteral("—")};
        QCOMPARE(badgeLook(snapshot(), *m_settings), expected);
    }

    void aFigureThatIsSwitchedOffStaysInTheToolTip() {
        m_settings->menuNumber = false;
        const BadgeLook expected{{}, QStringLiteral("Ethereum"), QStringLiteral("Low: 12.3 gwei")};
        QCOMPARE(badgeLook(snapshot(), *m_settings), expected);
    }

private:
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppSettings> m_settings;
};

QTEST_GUILESS_MAIN(BadgeTextTest)
#include "BadgeTextTest.moc"
