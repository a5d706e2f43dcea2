#include "Support/Setting.h"

#include "Support/TemporaryHome.h"
#include "Support/TestFiles.h"
#include "Support/Worker.h"

#include <QTest>

using namespace torvane;

namespace {

enum class Fruit { apple, pear };

} // namespace

template <>
inline constexpr std::array torvane::rawValues<Fruit>{
    std::pair{Fruit::apple, QLatin1StringView("Apple")},
    std::pair{Fruit::pear, QLatin1StringView("Sweet pear")},
};

namespace {

struct Place {
    QString name;

    static Place fromStorageValue(const QString& text) { return {text.isEmpty() ? QStringLiteral("here") : text}; }
    QString storageValue() const { return name; }
    bool operator==(const Place&) const = default;
};

class Basket final : public SettingsOwner {
public:
    using SettingsOwner::SettingsOwner;

    Setting<bool> isFull{this, "isFull", true};
    Setting<qint64> count{this, "count", 3};
    Setting<Fruit> fruit{this, "fruit", Fruit::pear};
    Setting<Place> place{this, "place", Place{QStringLiteral("there")}};
    Setting<QSet<QString>> labels{this, "labels", {QStringLiteral("ripe")}};
};

} // namespace

class SettingTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<TemporaryHome>();
        QVERIFY(m_directory->isValid());
    }

    void withoutStoredValuesSettingsHaveTheirDefaults() {
        UserDefaults defaults(path(), m_directory->path());
        const Basket basket(defaults);
        QCOMPARE(basket.isFull.value(), true);
        QCOMPARE(basket.count.value(), 3);
        QCOMPARE(basket.fruit.value(), Fruit::pear);
        QCOMPARE(basket.place.value(), Place{QStringLiteral("there")});
        QCOMPARE(basket.labels.value(), QSet<QString>{QStringLiteral("ripe")});
    }

    void makingSettingsWritesNothing() {
        UserDefaults defaults(path(), m_directory->path());
        const Basket basket(defaults);
        worker().waitForDone();
        QVERIFY(!QFile::exists(path()));
    }

    void storedValuesAreReadWhenTheSettingIsMade() {
        store(R"({"isFull": false, "count": -9, "fruit": "Apple", "place": "", "labels": ["a", "b", "a"]})");
        UserDefaults defaults(path(), m_directory->path());
        const Basket basket(defaults);
        QCOMPARE(basket.isFull.value(), false);
        QCOMPARE(basket.count.value(), -9);
        QCOMPARE(basket.fruit.value(), Fruit::apple);
        QCOMPARE(basket.place.value(), Place{QStringLiteral("here")});
        QCOMPARE(basket.labels.value(), (QSet<QString>{QStringLiteral("a"), QStringLiteral("b")}));
    }

    void unusableValuesGiveTheDefaultsAndStayStored() {
        const QByteArray unusable = R"({"isFull":1,"count":"5","fruit":"apple","place":null,"labels":["a",1]})";
        store(unusable);
        UserDefaults defaults(path(), m_directory->path());
        Basket basket(defaults);
        QCOMPARE(basket.isFull.value(), true);
        QCOMPARE(basket.count.value(), 3);
        QCOMPARE(basket.fruit.value(), Fruit::pear);
        QCOMPARE(basket.place.value(), Place{QStringLiteral("there")});
        QCOMPARE(basket.labels.value(), QSet<QString>{QStringLiteral("ripe")});
        basket.count = 5;
        QCOMPARE(stored(), QByteArray(R"({"isFull":1,"count":5,"fruit":"apple","place":null,"labels":["a",1]})"));
    }

    void assigningStoresEachTypeInItsForm() {
        UserDefaults defaults(path(), m_directory->path());
        Basket basket(defaults);
        basket.isFull = false;
        basket.count = std::numeric_limits<qint64>::min();
        basket.fruit = Fruit::pear;
        basket.place = Place{QStringLiteral("élsewhere")};
        basket.labels = {QStringLiteral("z"), QStringLiteral("a")};
        QCOMPARE(stored(), QByteArray(R"({"isFull":false,"count":-9223372036854775808,"fruit":"Sweet pear",)"
                                      R"("place":"élsewhere","labels":["a","z"]})"));
        basket.labels = QSet<QString>();
        QVERIFY(stored().contains(R"("labels":[])"));
    }

    void observersAreToldBeforeTheValueIsSetAndStored() {
        UserDefaults defaults(path(), m_directory->path());
        Basket basket(defaults);
        int told = 0;
        basket.count.observe(this, [&](qint64 announced) {
            ++told;
            QCOMPARE(announced, 8);
            QCOMPARE(basket.count.value(), 3);
            QVERIFY(!defaults.integer(QStringLiteral("count")));
        });
        connect(&basket, &ObservableObject::objectWillChange, this, [&] {
            ++told;
            QVERIFY(!defaults.integer(QStringLiteral("count")));
        });
        basket.count = 8;
        QCOMPARE(told, 2);
        QCOMPARE(basket.count.value(), 8);
        QCOMPARE(defaults.integer(QStringLiteral("count")), 8);
    }

    void anEqualValueIsAnnouncedAndStored() {
        UserDefaults defaults(path(), m_directory->path());
        Basket basket(defaults);
        int told = 0;
        basket.count.observe(this, [&](qint64) { ++told; });
        basket.count = 3;
        QCOMPARE(told, 1);
        QCOMPARE(stored(), QByteArray(R"({"count":3})"));
    }

    void anAssignmentInsideAnAnnouncementLeavesMemoryAndStoreInAgreement() {
        UserDefaults defaults(path(), m_directory->path());
        Basket basket(defaults);
        basket.count.observe(this, [&](qint64 announced) {
            if (announced == 1)
                basket.count = 2;
        });
        basket.count = 1;
        QCOMPARE(basket.count.value(), 1);
        QCOMPARE(defaults.integer(QStringLiteral("count")), 1);
    }

private:
    QString path() const { return m_directory->filePath(QStringLiteral("preferences.json")); }

    void store(const QByteArray& text) const { TestFiles::put(path(), text); }

    /// The file's content without blanks, which no value here has outside its strings.
    QByteArray stored() const {
        worker().waitForDone();
        return TestFiles::contentOf(path()).replace("\n", "").replace("  ", "").replace("\": ", "\":");
    }

    std::unique_ptr<TemporaryHome> m_directory;
};

QTEST_GUILESS_MAIN(SettingTest)
#include "SettingTest.moc"
