#include "Model/GasLevel.h"

#include <QTest>

#include <limits>

using namespace torvane;

class GasLevelTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPriceFallsIntoOneOfThreeLevels_data() {
        QTest::addColumn<double>("gwei");
        QTest::addColumn<GasLevel>("level");
        QTest::newRow("eight is still low") << 8.0 << GasLevel::low;
        QTest::newRow("just above eight is normal") << 8.0000001 << GasLevel::normal;
        QTest::newRow("thirty is still normal") << 30.0 << GasLevel::normal;
        QTest::newRow("above thirty is busy") << 30.01 << GasLevel::busy;
        QTest::newRow("zero is low") << 0.0 << GasLevel::low;
        QTest::newRow("negative is low") << -5.0 << GasLevel::low;
        QTest::newRow("negative infinity is low") << -std::numeric_limits<double>::infinity() << GasLevel::low;
        QTest::newRow("infinity is busy") << std::numeric_limits<double>::infinity() << GasLevel::busy;
        QTest::newRow("not a number is busy") << std::numeric_limits<double>::quiet_NaN() << GasLevel::busy;
    }

    void aPriceFallsIntoOneOfThreeLevels() {
        QFETCH(double, gwei);
        QFETCH(GasLevel, level);
        QCOMPARE(gasLevel(gwei), level);
    }

    void rawValuesMatchExactly() {
        QCOMPARE(fromRawValue<GasLevel>(u"low"), GasLevel::low);
        QCOMPARE(fromRawValue<GasLevel>(u"normal"), GasLevel::normal);
        QCOMPARE(fromRawValue<GasLevel>(u"busy"), GasLevel::busy);
        for (const QStringView other : {u"Low", u"LOW", u"", u" low", u"lowest"})
            QVERIFY(!fromRawValue<GasLevel>(other));
    }

    void wordsAreTheCapitalisedRawValues() {
        for (const GasLevel level : allCases<GasLevel>()) {
            const QString raw(rawValue(level));
            QCOMPARE(QString(word(level)), raw.at(0).toUpper() + raw.mid(1));
        }
    }

    void casesComeInOrder() {
        const std::array expected{GasLevel::low, GasLevel::normal, GasLevel::busy};
        QVERIFY(allCases<GasLevel>() == expected);
    }
};

QTEST_GUILESS_MAIN(GasLevelTest)
#include "GasLevelTest.moc"
