#include "Support/JSON.h"

#include <QTest>

using namespace torvane;

namespace {

/// A type that is one string in the document.
struct Shade {
    int level;

    static Shade fromText(const QString& text) {
        if (text != QLatin1String("dark"))
            throw DecodingError(DecodingError::Cause::corrupted, "not a shade");
        return {1};
    }

    QString toText() const { return QStringLiteral("dark"); }
};

struct Point {
    double x;
    std::optional<double> y;

    static constexpr std::tuple keys{Key{"x", &Point::x}, Key{"y", &Point::y}};
};

struct Record {
    bool flag;
    qint64 number;
    std::optional<QString> text;
    QList<Point> points;
    std::optional<QList<QString>> names;
    std::optional<Shade> shade;

    static constexpr std::tuple keys{
        Key{"flag", &Record::flag},     Key{"number", &Record::number}, Key{"text", &Record::text},
        Key{"points", &Record::points}, Key{"names", &Record::names},   Key{"shade", &Record::shade},
    };
};

/// Written as an array by position.
struct Arguments {
    quint64 count;
    QString tag;
    QList<double> parts;

    std::tuple<quint64, QString, QList<double>> elements() const { return {count, tag, parts}; }
};

struct NoArguments {
    std::tuple<> elements() const { return {}; }
};

template <class Parameters>
struct Call {
    QString method;
    Parameters parameters;

    static constexpr std::tuple keys{Key{"method", &Call::method}, Key{"params", &Call::parameters}};
};

/// Counts how many there have been.
struct Counted {
    QString name;

    static inline int made = 0;
    Counted() { ++made; }

    static constexpr std::tuple keys{Key{"name", &Counted::name}};
};

struct Forgetful {
    double first;
    double second;
    std::optional<double> forgotten;

    static constexpr std::tuple keys{Key{"first", &Forgetful::first}, Key{"second", &Forgetful::second}};
};

static_assert(JSON::hasAllKeys<Point> && JSON::hasAllKeys<Record> && JSON::hasAllKeys<Call<NoArguments>>);
static_assert(!JSON::hasAllKeys<Forgetful>);

const QByteArray plain = "{\"flag\":true,\"number\":-5,\"points\":[{\"x\":1},{\"x\":2,\"y\":3}]}";

QByteArray complaint(const QByteArray& bytes) {
    try {
        JSON::decode<Record>(bytes);
        return {};
    } catch (const DecodingError& error) {
        return error.what();
    }
}

/// The plain document with these members after its own.
QByteArray with(const QByteArray& members) {
    return plain.chopped(1) + ',' + members + '}';
}

} // namespace

/// Records, by tables of their keys.
class JSONRecordTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aListThatOnlyAnnouncesRecordsMakesNone() {
        Counted::made = 0;
        const QByteArray commas = '[' + QByteArray("0,").repeated(100'000) + "0]";
        QVERIFY_THROWS_EXCEPTION(DecodingError, JSON::decode<QList<Counted>>(commas));
        QCOMPARE(Counted::made, 0);
        QCOMPARE(JSON::decode<QList<Counted>>(R"([{"name":"a"},{"name":"b"}])").size(), 2);
        QCOMPARE(Counted::made, 2);
    }

    void aRecordIsReadByItsKeys() {
        const Record record = JSON::decode<Record>(with("\"shade\":\"dark\",\"text\":\"a\",\"names\":[\"b\",\"c\"]"));
        QVERIFY(record.flag);
        QCOMPARE(record.number, -5);
        QCOMPARE(record.text, QStringLiteral("a"));
        QCOMPARE(record.points.size(), 2);
        QVERIFY(!record.points.at(0).y);
        QCOMPARE(record.points.at(1).y, 3.0);
        QCOMPARE(record.names, (QList<QString>{QStringLiteral("b"), QStringLiteral("c")}));
        QCOMPARE(record.shade->level, 1);
    }

    void whatIsAbsentIsLeftOut() {
        QCOMPARE(JSON::encode(JSON::decode<Record>(plain)), plain);
        QCOMPARE(JSON::encode(JSON::decode<Record>(with("\"text\":null,\"names\":null,\"shade\":null"))), plain);
    }

    void unknownMembersAreIgnoredAtAnyDepth() {
        const QByteArray deep = QByteArray(100000, '[') + QByteArray(100000, ']');
        const QByteArray document = with("\"other\":{\"flag\":1,\"x\":[1e400,{}]},\"\":" + deep + ",\"Flag\":0");
        QCOMPARE(JSON::encode(JSON::decode<Record>(document)), plain);
    }

    void anEscapedKeyIsTheSameKey() {
        QCOMPARE(JSON::decode<Record>(with("\"\\u0074ext\":\"a\"")).text, QStringLiteral("a"));
    }

    void theLastOfDuplicatesCounts_data() {
        QTest::addColumn<QByteArray>("members");
        QTest::addColumn<QByteArray>("outcome"); // the complaint, or the document that is left
        const auto row = [](const char* name, const QByteArray& members, const QByteArray& outcome) {
            QTest::newRow(name) << members << outcome;
        };
        row("a good value after a good one", "\"number\":6,\"number\":-5", plain);
        row("a good value after a value of the wrong type", "\"number\":\"a\",\"number\":-5", plain);
        row("a good value after null", "\"flag\":null,\"flag\":true", plain);
        row("a good list after a list with a bad element", "\"names\":[1],\"names\":null", plain);
        row("a bad value after a good one", "\"number\":\"a\"", "number: expected a number, found a string");
        row("null after a required value", "\"flag\":null", "flag: expected a boolean, found null");
        row("null after an optional value", "\"text\":\"a\",\"text\":null", plain);
        row("a list replaces the earlier one", "\"points\":[],\"points\":[{\"x\":1},{\"x\":2,\"y\":3}]", plain);
        row("a bad list after a good one", "\"points\":[{\"x\":1},{\"y\":2}]", "points[1].x: missing");
        row("a record replaces the earlier one", "\"points\":[{\"x\":7,\"y\":8,\"x\":1,\"y\":null},{\"x\":2,\"y\":3}]",
            plain);
        row("nothing of the earlier record is left", "\"points\":[{\"x\":1,\"y\":2}],\"points\":[{}]",
            "points[0].x: missing");
    }

    void theLastOfDuplicatesCounts() {
        QFETCH(QByteArray, members);
        QFETCH(QByteArray, outcome);
        const QByteArray document = with(members);
        const QByteArray bad = complaint(document);
        QCOMPARE(bad.isEmpty() ? JSON::encode(JSON::decode<Record>(document)) : bad, outcome);
    }

    void aBadDocumentNamesThePlace_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("words");
        const auto row = [](const char* name, const QByteArray& bytes, const QByteArray& words) {
            QTest::newRow(name) << bytes << words;
        };
        row("no object", "[]", "expected an object, found an array");
        row("null alone", "null", "expected an object, found null");
        row("nothing in it", "{}", "flag: missing");
        row("the first in the order of the table", "{\"points\":1,\"number\":1,\"flag\":0}",
            "flag: expected a boolean, found a number");
        row("an integer for a boolean", with("\"flag\":1"), "flag: expected a boolean, found a number");
        row("a fraction for an integer", with("\"number\":1.5"), "number: not an integer of the wanted size");
        row("a number for a text", with("\"text\":1"), "text: expected a string, found a number");
        row("an object for a list", with("\"points\":{}"), "points: expected an array, found an object");
        row("a number for a record", with("\"points\":[1]"), "points[0]: expected an object, found a number");
        row("null in a list", with("\"names\":[\"a\",null]"), "names[1]: expected a string, found null");
        row("a bad member of a record in a list", with("\"points\":[{\"x\":1},{\"x\":1,\"y\":true}]"),
            "points[1].y: expected a number, found a boolean");
        row("a text that its type refuses", with("\"shade\":\"light\""), "shade: not a shade");
        row("no text where a type wants one", with("\"shade\":1"), "shade: expected a string, found a number");
    }

    void aBadDocumentNamesThePlace() {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, words);
        QCOMPARE(complaint(bytes), words);
    }

    void anErrorTellsItsParts() {
        try {
            JSON::decode<Record>(with("\"points\":[{}]"));
            QFAIL("decoded");
        } catch (const DecodingError& error) {
            QCOMPARE(error.cause(), DecodingError::Cause::missing);
            QCOMPARE(error.path(), "points[0].x");
            QCOMPARE(error.description(), "missing");
        }
    }

    void argumentsAreWrittenByPosition() {
        const Call<Arguments> call{QStringLiteral("m"), {20, QStringLiteral("latest"), {15, 50}}};
        QCOMPARE(JSON::encode(call), "{\"method\":\"m\",\"params\":[20,\"latest\",[15,50]]}");
        QCOMPARE(JSON::encode(Call<NoArguments>{QStringLiteral("m"), {}}), "{\"method\":\"m\",\"params\":[]}");
    }

    void membersKeepTheirOrderAndText() {
        const JSON::Members members = JSON::members(" { \"b\" : 1.50 ,\"a\":[ 1,\n 2 ] , \"c,\":\"x, \\\" }\" ,"
                                                    "\"\\u0064\":{\"e\":{ } }\n} ");
        const JSON::Members expected{{QStringLiteral("b"), "1.50"},
                                     {QStringLiteral("a"), "[ 1,\n 2 ]"},
                                     {QStringLiteral("c,"), "\"x, \\\" }\""},
                                     {QStringLiteral("d"), "{\"e\":{ } }"}};
        QCOMPARE(members, expected);
    }

    void theLastOfDuplicateMembersStandsAtTheFirstPlace() {
        const JSON::Members expected{{QStringLiteral("a"), "3"}, {QStringLiteral("b"), "null"}};
        QCOMPARE(JSON::members("{\"a\":1,\"b\":null,\"\\u0061\":2,\"a\":3}"), expected);
    }

    void anObjectHasOneMemberOnEachLine() {
        const JSON::Members members{{QStringLiteral("a\""), "[1, 2]"}, {QStringLiteral("b"), "true"}};
        const QByteArray object = JSON::object(members);
        QCOMPARE(object, "{\n  \"a\\\"\": [1, 2],\n  \"b\": true\n}\n");
        QCOMPARE(JSON::members(object), members);
        QCOMPARE(JSON::object(JSON::members(object)), object);
        QCOMPARE(JSON::object({}), "{}\n");
        QVERIFY(JSON::members("{}").isEmpty());
    }

    void membersOfNoObjectAreRefused() {
        for (const char* const text : {"[]", "1", "null", "", "{\"a\":}", "{\"a\":1}x"})
            QVERIFY_EXCEPTION_THROWN(JSON::members(text), DecodingError);
    }
};

QTEST_GUILESS_MAIN(JSONRecordTest)
#include "JSONRecordTest.moc"
