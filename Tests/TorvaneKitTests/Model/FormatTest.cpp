#include "Model/Format.h"

#include "Support/Clock.h"

#include <QTest>

#include <clocale>
#include <csignal>
#include <limits>
#include <sys/wait.h>
#include <unistd.h>

using namespace torvane;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

GasData gas() {
    return {.baseFee = 12.34,
            .low = 12.5,
            .avg = 13.04,
            .high = 123.6,
            .history = {},
            .feeTransferUsd = {},
            .feeSwapUsd = {}};
}

L2Entry network(const QString& name, const QString& tag, std::optional<double> costUsd,
                std::optional<double> costGwei) {
    L2Entry entry{};
    entry.name = name;
    entry.tag = tag;
    entry.costUsd = costUsd;
    entry.costGwei = costGwei;
    return entry;
}

QList<L2Entry> networks() {
    return {network(QStringLiteral("Base"), QStringLiteral("BASE"), 0.004, 0.0123),
            network(QStringLiteral("Scroll"), QStringLiteral("SCR"), {}, {}),
            network(QStringLiteral("Base"), QStringLiteral("B2"), 9, 9)};
}

QDateTime atTheMerge() {
    return QDateTime::fromSecsSinceEpoch(1663224179, Qt::UTC);
}

void runsUnder(const char* processLocale, const QString& userLocale) {
    QVERIFY2(std::setlocale(LC_ALL, processLocale), "The tests' locales are made when they are built");
    QLocale::setDefault(QLocale(userLocale));
}

} // namespace

class FormatTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        std::setlocale(LC_ALL, "C");
        QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    }

    void cleanup() { Clock::setSource(nullptr); }

    void gasPrices_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("from a hundred without decimals") << 123.6 << "124";
        QTest::newRow("a hundred") << 100.0 << "100";
        QTest::newRow("a tie at a hundred goes to even") << 100.5 << "100";
        QTest::newRow("rounding up inside the band keeps its decimal") << 99.96 << "100.0";
        QTest::newRow("one decimal") << 4.27 << "4.3";
        QTest::newRow("one keeps its zero") << 1.0 << "1.0";
        QTest::newRow("zero") << 0.0 << "0";
        QTest::newRow("negative zero") << -0.0 << "0";
        QTest::newRow("below one") << 0.999 << "0.999";
        QTest::newRow("rounds to one and is trimmed") << 0.9996 << "1";
        QTest::newRow("the smallest of three decimals") << 0.001 << "0.001";
        QTest::newRow("trimmed") << 0.25 << "0.25";
        QTest::newRow("trimmed to one decimal") << 0.1 << "0.1";
        QTest::newRow("rounded and trimmed") << 0.0504 << "0.05";
        QTest::newRow("just below a thousandth") << 0.00099 << "0.00099";
        QTest::newRow("half a thousandth of a gwei") << 0.0005 << "0.0005";
        QTest::newRow("two significant digits") << 0.00012 << "0.00012";
        QTest::newRow("a power of ten") << 0.0001 << "0.0001";
        QTest::newRow("small negative") << -0.0002 << "-0.0002";
        QTest::newRow("half negative") << -0.5 << "-0.5";
        QTest::newRow("negative") << -5.0 << "-5";
        QTest::newRow("negative with a negative precision") << -12345.6789 << "-12345.6789";
        QTest::newRow("minus a thousand") << -1000.0 << "-1000";
        QTest::newRow("not a number") << notANumber << "nan";
        QTest::newRow("infinity") << infinity << "inf";
    }

    void gasPrices() {
        QFETCH(double, value);
        QFETCH(QString, text);
        QCOMPARE(Format::gwei(value), text);
    }

    void theSmallestGasPriceKeepsTwoSignificantDigits() {
        const QString text = Format::gwei(std::numeric_limits<double>::denorm_min());
        QCOMPARE(text, QStringLiteral("0.") + QString(323, QLatin1Char('0')) + QStringLiteral("49"));
    }

    void negativeInfinityEndsTheProcess() {
        const pid_t child = fork();
        if (child == 0) {
            std::signal(SIGABRT, SIG_DFL);
            std::freopen("/dev/null", "w", stderr);
            qInstallMessageHandler(nullptr);
            Format::gwei(-infinity);
            _exit(0);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
    }

    void rangeLabelsDifferWhereNineDecimalsCan_data() {
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::addColumn<QString>("lowLabel");
        QTest::addColumn<QString>("highLabel");
        QTest::newRow("equal numbers") << 0.5 << 0.5 << "0.5"
                                       << "0.5";
        QTest::newRow("different labels") << 1.0 << 2.0 << "1.0"
                                          << "2.0";
        QTest::newRow("three decimals, trimmed") << 1.04 << 1.01 << "1.04"
                                                 << "1.01";
        QTest::newRow("three decimals above ten") << 12.04 << 12.01 << "12.04"
                                                  << "12.01";
        QTest::newRow("nine decimals") << 1.000000001 << 1.000000002 << "1.000000001"
                                       << "1.000000002";
        QTest::newRow("beyond nine decimals") << 1.0000000001 << 1.0000000002 << "1.0"
                                              << "1.0";
        QTest::newRow("not numbers") << notANumber << notANumber << "nan"
                                     << "nan";
    }

    void rangeLabelsDifferWhereNineDecimalsCan() {
        QFETCH(double, low);
        QFETCH(double, high);
        QFETCH(QString, lowLabel);
        QFETCH(QString, highLabel);
        const auto [a, b] = Format::rangeLabels(low, high);
        QCOMPARE(a, lowLabel);
        QCOMPARE(b, highLabel);
    }

    void dollars_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("no grouping") << 1234.4 << "$1234";
        QTest::newRow("a hundred") << 100.0 << "$100";
        QTest::newRow("rounding up inside the band") << 99.999 << "$100.00";
        QTest::newRow("cents") << 1.26 << "$1.26";
        QTest::newRow("one cent") << 0.01 << "$0.01";
        QTest::newRow("a tie goes to even") << 0.125 << "$0.12";
        QTest::newRow("below a cent") << 0.005 << "<$0.01";
        QTest::newRow("hardly anything") << 5e-324 << "<$0.01";
        QTest::newRow("zero") << 0.0 << "$0.00";
        QTest::newRow("negative") << -3.0 << "$0.00";
        QTest::newRow("not a number") << notANumber << "$0.00";
    }

    void dollars() {
        QFETCH(double, value);
        QFETCH(QString, text);
        QCOMPARE(Format::usd(value), text);
    }

    void costOfATransaction() {
        QCOMPARE(Format::txUsd(1, 3000, 21000), QStringLiteral("$0.06"));
        QCOMPARE(Format::txUsd(20, 3000, Format::transferGas), QStringLiteral("$1.26"));
        QCOMPARE(Format::txUsd(100, 3000, Format::nftMintGas), QStringLiteral("$36.00"));
        QCOMPARE(Format::txUsd(1, 0, 21000), QStringLiteral("$0.00"));
        QCOMPARE(Format::txUsd(0.001, 3000, 21000), QStringLiteral("<$0.01"));
        QCOMPARE(Format::txUsd(1000, 10000, 21000), QStringLiteral("$210"));
    }

    void theEtherPriceIsGroupedByTheUsersLocale() {
        QCOMPARE(Format::ethPrice(3456.7), QStringLiteral("$3,456.70"));
        QCOMPARE(Format::ethPrice(0.125), QStringLiteral("$0.12"));
        QCOMPARE(Format::ethPrice(-1234.5), QStringLiteral("$-1,234.50"));
        QCOMPARE(Format::ethPrice(notANumber), QStringLiteral("$nan"));
        QCOMPARE(Format::ethPrice(infinity), QStringLiteral("$inf"));
        runsUnder("de_DE.UTF-8", QStringLiteral("de_DE"));
        QCOMPARE(Format::ethPrice(3456.7), QStringLiteral("$3.456,70"));
        runsUnder("hi_IN", QStringLiteral("hi_IN"));
        QCOMPARE(Format::ethPrice(1234567.125), QStringLiteral("$12,34,567.12"));
    }

    void fixedFormatsAreTheSameInEveryLocale() {
        for (const auto& [process, user] :
             {std::pair{"de_DE.UTF-8", QStringLiteral("de_DE")}, std::pair{"hi_IN", QStringLiteral("hi_IN")}}) {
            runsUnder(process, user);
            QCOMPARE(Format::gwei(4.27), QStringLiteral("4.3"));
            QCOMPARE(Format::gwei(1234.5), QStringLiteral("1234"));
            QCOMPARE(Format::usd(1.255), QStringLiteral("$1.25"));
            QCOMPARE(Format::pct(-1.26), QStringLiteral("-1.3%"));
        }
    }

    void percentagesAreSigned() {
        QCOMPARE(Format::pct(0), QStringLiteral("+0.0%"));
        QCOMPARE(Format::pct(-0.0), QStringLiteral("+0.0%"));
        QCOMPARE(Format::pct(-0.04), QStringLiteral("-0.0%"));
        QCOMPARE(Format::pct(-1.26), QStringLiteral("-1.3%"));
        QCOMPARE(Format::pct(2.25), QStringLiteral("+2.2%"));
        QCOMPARE(Format::pct(notANumber), QStringLiteral("nan%"));
    }

    void blockNumbersAreGrouped() {
        QCOMPARE(Format::block(21000000), QStringLiteral("21,000,000"));
        QCOMPARE(Format::block(0), QStringLiteral("0"));
        QCOMPARE(Format::block(std::numeric_limits<quint64>::max()), QStringLiteral("18,446,744,073,709,551,615"));
        QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
        QCOMPARE(Format::block(21000000), QStringLiteral("21.000.000"));
    }

    void blocksAreEstimatedFromTheTime_data() {
        QTest::addColumn<QString>("at");
        QTest::addColumn<QString>("text");
        QTest::newRow("the first proof-of-stake block") << "2022-09-15T06:42:59Z"
                                                        << "15,537,393";
        QTest::newRow("with a fraction, not yet the next") << "2022-09-15T06:43:10.999Z"
                                                           << "15,537,393";
        QTest::newRow("twelve seconds later") << "2022-09-15T06:43:11.000Z"
                                              << "15,537,394";
        QTest::newRow("a second earlier") << "2022-09-15T06:42:58Z"
                                          << "15,537,392";
        QTest::newRow("before the first block") << "1970-01-01T00:00:00Z"
                                                << "-123,064,622";
    }

    void blocksAreEstimatedFromTheTime() {
        QFETCH(QString, at);
        QFETCH(QString, text);
        QCOMPARE(Format::estimateBlock(at), text);
    }

    void aTextThatIsNoTimeCountsAsNow() {
        Clock::setSource(&atTheMerge);
        QCOMPARE(Format::estimateBlock(QStringLiteral("soon")), QStringLiteral("15,537,393"));
        QCOMPARE(Format::estimateBlock(QString()), QStringLiteral("15,537,393"));
    }

    void theBadgeShowsTheChosenEthereumFigureBare() {
        const auto figure = [](BadgeSource source, Denomination denom) {
            return Format::badgeValue(BadgeChain::ethereum(), gas(), networks(), source, denom, 3000);
        };
        QCOMPARE(figure(BadgeSource::baseFee, Denomination::gwei), QStringLiteral("12.3"));
        QCOMPARE(figure(BadgeSource::low, Denomination::gwei), QStringLiteral("12.5"));
        QCOMPARE(figure(BadgeSource::average, Denomination::gwei), QStringLiteral("13.0"));
        QCOMPARE(figure(BadgeSource::high, Denomination::gwei), QStringLiteral("124"));
        QCOMPARE(figure(BadgeSource::low, Denomination::usd), QStringLiteral("$0.79"));
    }

    void aBaseFeeOfZeroCostsNothing() {
        GasData free = gas();
        free.baseFee = 0;
        QCOMPARE(Format::badgeValue(BadgeChain::ethereum(), free, {}, BadgeSource::baseFee, Denomination::usd, 3000),
                 QStringLiteral("$0.00"));
    }

    void theBadgeShowsALayer2FigureWithItsUnit() {
        const auto figure = [](const char* name, Denomination denom) {
            return Format::badgeValue(BadgeChain::l2(QString::fromLatin1(name)), gas(), networks(), BadgeSource::high,
                                      denom, 3000);
        };
        QCOMPARE(figure("Base", Denomination::gwei), QStringLiteral("0.012 gwei"));
        QCOMPARE(figure("Base", Denomination::usd), QStringLiteral("<$0.01"));
        QCOMPARE(figure("Scroll", Denomination::gwei), QStringLiteral("—"));
        QCOMPARE(figure("Scroll", Denomination::usd), QStringLiteral("—"));
        QCOMPARE(figure("base", Denomination::gwei), QStringLiteral("—"));
        QCOMPARE(Format::badgeValue(BadgeChain::l2(QStringLiteral("Base")), gas(), {}, BadgeSource::low,
                                    Denomination::gwei, 3000),
                 QStringLiteral("—"));
    }

    void theTagIsTheFirstNetworksOfThatName() {
        QCOMPARE(Format::badgeTag(BadgeChain::l2(QStringLiteral("Base")), networks()), QStringLiteral("BASE"));
        QVERIFY(!Format::badgeTag(BadgeChain::l2(QStringLiteral("BASE")), networks()));
        QVERIFY(!Format::badgeTag(BadgeChain::ethereum(), networks()));
    }
};

QTEST_GUILESS_MAIN(FormatTest)
#include "FormatTest.moc"
