#include "Support/RawEnum.h"

#include <QTest>

using namespace torvane;

namespace {

enum class Colour { red, paleBlue, green };
enum class Bare { one, two };

} // namespace

template <>
inline constexpr std::array torvane::rawValues<Colour>{
    std::pair{Colour::red, QLatin1StringView("red")},
    std::pair{Colour::paleBlue, QLatin1StringView("Pale Blue")},
    std::pair{Colour::green, QLatin1StringView("green")},
};

static_assert(RawEnum<Colour>);
static_assert(!RawEnum<Bare>);
static_assert(!RawEnum<int>);

class RawEnumTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aCaseHasTheTextOfTheTable() {
        QCOMPARE(rawValue(Colour::red), QLatin1StringView("red"));
        QCOMPARE(rawValue(Colour::paleBlue), QLatin1StringView("Pale Blue"));
        QCOMPARE(rawValue(Colour::green), QLatin1StringView("green"));
    }

    void everyCaseComesBackFromItsRawValue() {
        for (const Colour colour : allCases<Colour>())
            QVERIFY(fromRawValue<Colour>(QString(rawValue(colour))) == colour);
    }

    void casesComeInTheOrderOfTheTable() {
        const std::array expected{Colour::red, Colour::paleBlue, Colour::green};
        QVERIFY(allCases<Colour>() == expected);
    }

    void onlyTheExactTextIsARawValue_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << QString();
        QTest::newRow("another case of letters") << QStringLiteral("Red");
        QTest::newRow("a blank before") << QStringLiteral(" red");
        QTest::newRow("a blank after") << QStringLiteral("red ");
        QTest::newRow("a part") << QStringLiteral("Pale");
        QTest::newRow("the name of the case") << QStringLiteral("paleBlue");
        QTest::newRow("an unknown word") << QStringLiteral("yellow");
        QTest::newRow("its number") << QStringLiteral("0");
    }

    void onlyTheExactTextIsARawValue() {
        QFETCH(QString, text);
        QVERIFY(!fromRawValue<Colour>(text));
    }
};

QTEST_GUILESS_MAIN(RawEnumTest)
#include "RawEnumTest.moc"
