#include "Support/FixedPoint.h"

#include <QRandomGenerator>
#include <QTest>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>

using namespace torvane;

namespace {

QString withPrintf(double value, int precision) {
    QByteArray text(500 + std::max(precision, 0), Qt::Uninitialized);
    const int length = std::snprintf(text.data(), static_cast<std::size_t>(text.size()), "%.*f", precision, value);
    return QString::fromLatin1(text.constData(), length);
}

} // namespace

class FixedPointTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { std::setlocale(LC_ALL, "C"); }

    void numbersRoundAsPrintfRoundsThem() {
        QRandomGenerator random(1);
        for (int i = 0; i < 200'000; ++i) {
            const double value = std::bit_cast<double>(random.generate64());
            if (!std::isfinite(value))
                continue;
            const int precision = random.bounded(-2, 12);
            QCOMPARE(fixedPoint(value, precision), withPrintf(value, precision));
        }
    }

    void exactTiesGoToTheEvenDigit() {
        for (int i = -20'000; i <= 20'000; ++i) {
            const double tie = i / 8.0;
            for (const int precision : {0, 1, 2})
                QCOMPARE(fixedPoint(tie, precision), withPrintf(tie, precision));
        }
        QCOMPARE(fixedPoint(0.125, 2), QStringLiteral("0.12"));
        QCOMPARE(fixedPoint(0.375, 2), QStringLiteral("0.38"));
        QCOMPARE(fixedPoint(2.5, 0), QStringLiteral("2"));
    }

    void extremesKeepEveryDigit() {
        for (const double value : {std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
                                   std::numeric_limits<double>::denorm_min(), -0.0}) {
            for (const int precision : {-1, 0, 6, 330, 1100})
                QCOMPARE(fixedPoint(value, precision), withPrintf(value, precision));
        }
    }

    void aNegativePrecisionCountsAsSixDigits() { QCOMPARE(fixedPoint(-1000, -2), QStringLiteral("-1000.000000")); }

    void notANumberHasNoSign() {
        QCOMPARE(fixedPoint(std::numeric_limits<double>::quiet_NaN(), 1), QStringLiteral("nan"));
        QCOMPARE(fixedPoint(-std::numeric_limits<double>::quiet_NaN(), 1), QStringLiteral("nan"));
    }

    void theProcessesLocaleChangesNothing_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("German") << QByteArray("de_DE.UTF-8");
        QTest::newRow("Hindi") << QByteArray("hi_IN");
    }

    void theProcessesLocaleChangesNothing() {
        QFETCH(QByteArray, name);
        QVERIFY2(std::setlocale(LC_ALL, name.constData()), "The tests' locales are made when they are built");
        QCOMPARE(fixedPoint(1234567.125, 2), QStringLiteral("1234567.12"));
        if (name.startsWith("de"))
            QCOMPARE(withPrintf(0.5, 1), QStringLiteral("0,5")); // The locale is really in force.
    }

    void groupingFollowsTheLocale_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("result");
        QTest::newRow("English") << "3456.70"
                                 << "en_US"
                                 << "3,456.70";
        QTest::newRow("German") << "21000000.00"
                                << "de_DE"
                                << "21.000.000,00";
        QTest::newRow("Hindi groups by two") << "21000000"
                                             << "hi_IN"
                                             << "2,10,00,000";
        QTest::newRow("Swedish minus") << "-1234"
                                       << "sv_SE" << QString::fromUtf8("\u22121\u00a0234");
        QTest::newRow("Spanish leaves four digits together") << "3456.70"
                                                             << "es_ES"
                                                             << "3456,70";
        QTest::newRow("Arabic digits") << "12.05"
                                       << "ar_EG" << QString::fromUtf8("١٢٫٠٥");
        QTest::newRow("digits beyond the basic plane") << "10.2"
                                                       << "ff_Adlm_GN" << QString::fromUtf8("𞥑𞥐.𞥒");
        QTest::newRow("more than 64 bits") << "100000000000000000000"
                                           << "en_US"
                                           << "100,000,000,000,000,000,000";
        QTest::newRow("no number") << "nan"
                                   << "de_DE"
                                   << "nan";
        QTest::newRow("infinity") << "-inf"
                                  << "de_DE"
                                  << "-inf";
    }

    void groupingFollowsTheLocale() {
        QFETCH(QString, text);
        QFETCH(QString, locale);
        QFETCH(QString, result);
        QCOMPARE(grouped(text, QLocale(locale)), result);
    }

    void theLargestDoubleIsGroupedExactly() {
        const QString text = fixedPoint(std::numeric_limits<double>::max(), 0);
        QCOMPARE(grouped(text, QLocale(QStringLiteral("en_US"))).remove(QLatin1Char(',')), text);
    }
};

QTEST_GUILESS_MAIN(FixedPointTest)
#include "FixedPointTest.moc"
