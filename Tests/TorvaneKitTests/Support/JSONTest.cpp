#include "Support/JSON.h"

#include <QTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace torvane;

namespace {

/// What is wrong with the document, or nothing.
QByteArray complaint(QByteArrayView bytes) {
    try {
        const JSON::Document document(bytes);
        return {};
    } catch (const DecodingError& error) {
        return error.what();
    }
}

template <class T>
QByteArray complaintAs(QByteArrayView bytes) {
    try {
        JSON::decode<T>(bytes);
        return {};
    } catch (const DecodingError& error) {
        return error.what();
    }
}

QByteArray nested(qsizetype depth) {
    return QByteArray(depth, '[') + QByteArray(depth, ']');
}

} // namespace

/// The grammar of RFC 8259, and values that stand alone.
class JSONTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatTheGrammarAllowsIsADocument_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("true") << QByteArray("true");
        QTest::newRow("false") << QByteArray("false");
        QTest::newRow("a number alone") << QByteArray("1");
        QTest::newRow("a string alone") << QByteArray("\"a\"");
        QTest::newRow("an empty object") << QByteArray("{}");
        QTest::newRow("an empty array") << QByteArray("[]");
        QTest::newRow("an empty key") << QByteArray("{\"\":1}");
        QTest::newRow("white space of every kind around everything")
            << QByteArray(" \t\r\n{ \"a\" :\n[ 1 ,\t2 ]\r} \n");
        QTest::newRow("long indentation within a list") << QByteArray("[1,\n                    2,\n\t\t\t   3 \n  ]");
        QTest::newRow("minus zero") << QByteArray("-0");
        QTest::newRow("every form of an exponent") << QByteArray("[1e1,1E1,1e+1,1E-1,1.5e01,0e0,-0.0e-0]");
        QTest::newRow("zero with an enormous exponent") << QByteArray("[0e400,0.0E+99999999999999999999]");
        QTest::newRow("a number beyond every double") << QByteArray("[1e400,-1e99999]");
        QTest::newRow("an integer of 1000 digits") << QByteArray(1000, '7');
        QTest::newRow("every short escape") << QByteArray("\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"");
        QTest::newRow("escapes of the basic plane") << QByteArray("\"\\u0000\\u00e9\\u4E2d\\uffff\"");
        QTest::newRow("a surrogate pair as escapes") << QByteArray("\"\\ud83d\\ude00\\uDBFF\\uDFFF\"");
        QTest::newRow("text of one to four bytes each") << QByteArray("\"a\u00e9\u4e2d\U0001f600\"");
        QTest::newRow("Hangul that shares its first byte with surrogates") << QByteArray("\"\ud7a3\ud000\"");
        QTest::newRow("a delete character") << QByteArray("\"\x7f\"");
    }

    void whatTheGrammarAllowsIsADocument() {
        QFETCH(QByteArray, bytes);
        QCOMPARE(complaint(bytes), QByteArray());
    }

    void whatTheGrammarForbidsIsRefused_data() {
        QTest::addColumn<QByteArray>("bytes");
        const auto row = [](const char* name, const QByteArray& bytes) { QTest::newRow(name) << bytes; };
        row("nothing", "");
        row("white space alone", " \n");
        row("a byte order mark", "\xef\xbb\xbf{}");
        row("UTF-16", QByteArray("{\0}\0", 4));
        row("a zero byte after the document", QByteArray("{}\0", 3));
        row("a zero byte and more after the document", QByteArray("{}\0junk", 7));
        row("a zero byte before the document", QByteArray("\0{}", 3));
        row("a zero byte between tokens", QByteArray("{\0}", 3));
        row("a zero byte in a string", QByteArray("\"a\0b\"", 5));
        row("a zero byte in a number", QByteArray("[1\0,2]", 6));
        row("bytes after the document", "{} x");
        row("a second document", "{}{}");
        row("a number after a number", "1 2");
        row("a closing bracket too many", "[1]]");
        row("an object that does not end", "{\"a\":1");
        row("an array that does not end", "[1,");
        row("an array that does not end after a number", "[1");
        row("a string that does not end", "\"abc");
        row("brackets that do not match", "[1}");
        row("a comma at the end of an array", "[1,]");
        row("a comma at the end of an object", "{\"a\":1,}");
        row("a comma at the start", "[,1]");
        row("two commas", "[1,,2]");
        row("no comma between numbers", "[1 2]");
        row("no comma between members", "{\"a\":1 \"b\":2}");
        row("no colon", "{\"a\" 1}");
        row("a comma for a colon", "{\"a\",1}");
        row("a key that is no string", "{1:2}");
        row("a number for the next key", "{\"a\":1,2}");
        row("a value without a key", "{\"a\":1,\"b\"}");
        row("single quotes", "{'a':1}");
        row("a key without quotes", "{a:1}");
        row("a comment", "{/* c */}");
        row("a comment to the end of the line", "[1] // c");
        row("a capital literal", "True");
        row("a literal cut short", "[tru]");
        row("a literal too long", "[nulll]");
        row("not a number", "[NaN]");
        row("infinity", "[Infinity]");
        row("minus infinity", "[-Infinity]");
        row("a plus sign", "[+1]");
        row("a leading zero", "[01]");
        row("a leading zero after a minus", "[-01]");
        row("a leading zero later in a list", "[1,02]");
        row("two zeros", "[00]");
        row("a point at the end", "[1.]");
        row("a point at the start", "[.5]");
        row("a point at the end later in a list", "[1, 2.]");
        row("two points", "[1.2.3]");
        row("a point before the exponent", "[1.e5]");
        row("an exponent without digits", "[1e]");
        row("an exponent with a sign alone", "[1e+]");
        row("an exponent with a fraction", "[1e1.5]");
        row("a minus alone", "[-]");
        row("a minus later in a list", "[1,-]");
        row("two minuses", "[--1]");
        row("hexadecimal", "[0x10]");
        row("a form feed between tokens", "[1,\f2]");
        row("a no-break space between tokens", "[1,\u00a02]");
    }

    void whatTheGrammarForbidsIsRefused() {
        QFETCH(QByteArray, bytes);
        QVERIFY2(complaint(bytes).startsWith("not JSON at byte "), complaint(bytes).constData());
    }

    void textThatIsNotUnicodeIsRefused_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("a high surrogate alone") << QByteArray("\\ud800");
        QTest::newRow("a high surrogate before text") << QByteArray("\\ud800abcdef");
        QTest::newRow("a high surrogate before another") << QByteArray("\\ud800\\ud800");
        QTest::newRow("a high surrogate before another escape") << QByteArray("\\ud800\\n");
        QTest::newRow("a low surrogate alone") << QByteArray("\\udc00");
        QTest::newRow("a low surrogate in capitals after text") << QByteArray("abc\\uDFFF");
        QTest::newRow("a low surrogate after Hangul") << QByteArray("\ud7a3\\udc00");
        QTest::newRow("a high surrogate as three bytes") << QByteArray("\xed\xa0\x80");
        QTest::newRow("a low surrogate as three bytes") << QByteArray("\xed\xbf\xbf");
        QTest::newRow("a surrogate pair as six bytes") << QByteArray("\xed\xa0\xbd\xed\xb8\x80");
        QTest::newRow("a byte that never occurs") << QByteArray("\xff");
        QTest::newRow("a continuation alone") << QByteArray("\x80");
        QTest::newRow("a sequence cut short by the end") << QByteArray("\xe4\xb8");
        QTest::newRow("a sequence cut short by a letter") << QByteArray("\xc3z");
        QTest::newRow("two bytes for a letter") << QByteArray("\xc1\xa1");
        QTest::newRow("two bytes for zero") << QByteArray("\xc0\x80");
        QTest::newRow("three bytes where two would do") << QByteArray("\xe0\x83\xa9");
        QTest::newRow("four bytes where three would do") << QByteArray("\xf0\x84\xb8\xad");
        QTest::newRow("beyond the last plane") << QByteArray("\xf4\x90\x80\x80");
        QTest::newRow("five bytes") << QByteArray("\xf8\x88\x80\x80\x80");
        QTest::newRow("a line end") << QByteArray("a\nb");
        QTest::newRow("a tab") << QByteArray("\t");
        QTest::newRow("the last control character") << QByteArray("a long text before it\x1f");
        QTest::newRow("an escape that does not exist") << QByteArray("\\q");
        QTest::newRow("an escape in octal") << QByteArray("\\012");
        QTest::newRow("an escape with three digits") << QByteArray("\\u12");
        QTest::newRow("an escape with a letter for a digit") << QByteArray("\\u12G4");
        QTest::newRow("an escape with a sign") << QByteArray("\\u+123");
    }

    void textThatIsNotUnicodeIsRefused() {
        QFETCH(QByteArray, text);
        const QByteArray quoted = '"' + text + '"';
        QVERIFY(!complaint(quoted).isEmpty());
        QVERIFY(!complaint("{\"unknown\":[" + quoted + "]}").isEmpty());
        QVERIFY(!complaint('{' + quoted + ":1}").isEmpty());
    }

    void anyDepthOfNestingIsRead() {
        QCOMPARE(complaint(nested(100000)), QByteArray());
        QCOMPARE(complaint(nested(5000000)), QByteArray());
        QVERIFY(!complaint(QByteArray(5000000, '[')).isEmpty());
        QVERIFY(!complaint(QByteArray("{\"a\":").repeated(100000)).isEmpty());
        QVERIFY(!complaint(QByteArray(100000, '[') + QByteArray(100000, '}')).isEmpty());
    }

    void aComplaintNamesTheByte() {
        QCOMPARE(complaint("[1,02]"), "not JSON at byte 4: Missing a comma or ']' after an array element.");
        QCOMPARE(complaint("{}\n x"), "not JSON at byte 4: The document root must not be followed by other values.");
        QCOMPARE(complaint("[\"\\udc00\"]"), "not JSON at byte 9: half of a surrogate pair");
    }

    void numbersAreTheNearestDouble_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("zero") << QByteArray("0") << 0.0;
        QTest::newRow("minus zero") << QByteArray("-0") << -0.0;
        QTest::newRow("minus zero with a point") << QByteArray("-0.0") << -0.0;
        QTest::newRow("an integer") << QByteArray("1234") << 1234.0;
        QTest::newRow("a short decimal") << QByteArray("0.1") << 0.1;
        QTest::newRow("a negative decimal") << QByteArray("-1.26") << -1.26;
        QTest::newRow("fifteen digits") << QByteArray("0.12345678901234") << 0.12345678901234;
        QTest::newRow("fifteen digits before the point") << QByteArray("12345678901234.5") << 12345678901234.5;
        QTest::newRow("sixteen digits") << QByteArray("9007199254740993") << 9007199254740992.0;
        QTest::newRow("seventeen digits") << QByteArray("0.30000000000000004") << 0.1 + 0.2;
        QTest::newRow("an exponent") << QByteArray("1.5e3") << 1500.0;
        QTest::newRow("a capital exponent with a sign") << QByteArray("1.5E+3") << 1500.0;
        QTest::newRow("an integer beyond 64 bits") << QByteArray("18446744073709551616") << 18446744073709551616.0;
        QTest::newRow("a negative integer beyond 64 bits")
            << QByteArray("-9223372036854775809") << -9223372036854775808.0;
        QTest::newRow("an integer of 40 digits") << QByteArray("1" + QByteArray(39, '0')) << 1e39;
        QTest::newRow("60 digits behind the point") << QByteArray("0." + QByteArray(60, '1')) << 1.0 / 9;
        QTest::newRow("the largest double") << QByteArray("1.7976931348623157e308") << 1.7976931348623157e308;
        QTest::newRow("just below the rounding to infinity")
            << QByteArray("1.7976931348623158e308") << 1.7976931348623157e308;
        QTest::newRow("the largest double as an integer")
            << QByteArray("17976931348623157" + QByteArray(292, '0')) << 1.7976931348623157e308;
        QTest::newRow("a long integer made small") << QByteArray("1" + QByteArray(400, '0') + "e-400") << 1.0;
        QTest::newRow("a long fraction made large") << QByteArray("0." + QByteArray(400, '0') + "1e401") << 1.0;
        QTest::newRow("many digits and a large exponent")
            << QByteArray("179769313486231580793728971405301e276") << 1.7976931348623158e308;
        QTest::newRow("the smallest normal") << QByteArray("2.2250738585072014e-308") << 2.2250738585072014e-308;
        QTest::newRow("the hard case below it") << QByteArray("2.2250738585072011e-308") << 2.225073858507201e-308;
        QTest::newRow("the smallest of all") << QByteArray("5e-324") << 5e-324;
        QTest::newRow("underflow") << QByteArray("1e-400") << 0.0;
        QTest::newRow("negative underflow") << QByteArray("-1e-400") << -0.0;
        QTest::newRow("underflow far beyond any exponent") << QByteArray("1e-99999999999999999999") << 0.0;
        QTest::newRow("underflow by zeros") << QByteArray("0." + QByteArray(500, '0') + "1") << 0.0;
        QTest::newRow("underflow of a large number") << QByteArray("123456e-999") << 0.0;
        QTest::newRow("zero with an enormous exponent") << QByteArray("0e999") << 0.0;
        QTest::newRow("zero with an exponent beyond 64 bits") << QByteArray("-0.00e99999999999999999999") << -0.0;
        QTest::newRow("underflow by the largest exponent of 64 bits") << QByteArray("10.5e-9223372036854775808") << 0.0;
        QTest::newRow("halfway to the next, to even") << QByteArray("9007199254740993.0") << 9007199254740992.0;
        QTest::newRow("halfway and a little more") << QByteArray("9007199254740993.00001") << 9007199254740994.0;
    }

    void numbersAreTheNearestDouble() {
        QFETCH(QByteArray, text);
        QFETCH(double, value);
        QCOMPARE(std::bit_cast<quint64>(JSON::decode<double>(text)), std::bit_cast<quint64>(value));
        const QList<double> three = JSON::decode<QList<double>>("[ 1," + text + " , " + text + "]");
        QCOMPARE(std::bit_cast<quint64>(three.at(2)), std::bit_cast<quint64>(value));
    }

    void numbersTooLargeForADoubleAreRefused_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("by the exponent") << QByteArray("1e400");
        QTest::newRow("negative") << QByteArray("-1e400");
        QTest::newRow("just above the largest") << QByteArray("1.7976931348623159e308");
        QTest::newRow("with a fraction of zeros first") << QByteArray("0.0001e99999");
        QTest::newRow("as an integer") << QByteArray("1" + QByteArray(400, '0'));
        QTest::newRow("by the largest exponent of 64 bits") << QByteArray("1.5e9223372036854775807");
        QTest::newRow("far beyond any exponent") << QByteArray("1e99999999999999999999");
        QTest::newRow("a long integer and a small exponent") << QByteArray("1" + QByteArray(400, '0') + "e-5");
    }

    void numbersTooLargeForADoubleAreRefused() {
        QFETCH(QByteArray, text);
        QCOMPARE(complaintAs<double>(text), "the number is too large");
        QCOMPARE(complaintAs<QList<double>>("[1," + text + "]"), "[1]: the number is too large");
    }

    void integersAreReadExactlyOrNotAtAll() {
        QCOMPARE(JSON::decode<qint64>("-9223372036854775808"), std::numeric_limits<qint64>::min());
        QCOMPARE(JSON::decode<qint64>("9223372036854775807"), std::numeric_limits<qint64>::max());
        QCOMPARE(JSON::decode<quint64>("18446744073709551615"), std::numeric_limits<quint64>::max());
        QCOMPARE(JSON::decode<qint64>("-0"), 0);
        for (const char* const text : {"9223372036854775808", "-9223372036854775809", "1.0", "1e3", "0.5"})
            QCOMPARE(complaintAs<qint64>(text), "not an integer of the wanted size");
        for (const char* const text : {"18446744073709551616", "-1", "1.0"})
            QCOMPARE(complaintAs<quint64>(text), "not an integer of the wanted size");
        QCOMPARE(complaintAs<qint64>("\"1\""), "expected a number, found a string");
    }

    void textsAreRead_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << QByteArray("\"\"") << QString();
        QTest::newRow("letters") << QByteArray("\"abc\"") << QStringLiteral("abc");
        QTest::newRow("short escapes") << QByteArray("\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"")
                                       << QStringLiteral("\"\\/\b\f\n\r\t");
        QTest::newRow("escapes by number")
            << QByteArray("\"\\u00e9\\u4E2D\\ud83d\\ude00\"") << QStringLiteral("\u00e9\u4e2d\U0001f600");
        QTest::newRow("bytes") << QByteArray("\"\u00e9\u4e2d\U0001f600\"") << QStringLiteral("\u00e9\u4e2d\U0001f600");
        QTest::newRow("a byte order mark first") << QByteArray("\"\ufeffa\"") << QStringLiteral("\ufeffa");
        QTest::newRow("two byte order marks") << QByteArray("\"\\ufeff\ufeff\"") << QStringLiteral("\ufeff\ufeff");
        QTest::newRow("a zero as an escape") << QByteArray("\"a\\u0000b\"") << QString::fromUtf16(u"a\0b", 3);
    }

    void textsAreRead() {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QCOMPARE(JSON::decode<QString>(bytes), text);
        QCOMPARE(JSON::decode<QString>(JSON::encode(text)), text);
    }

    void encodingIsCompactAndExact() {
        QCOMPARE(JSON::encode(true), "true");
        QCOMPARE(JSON::encode(false), "false");
        QCOMPARE(JSON::encode(0.1), "0.1");
        QCOMPARE(JSON::encode(100.0), "100");
        QCOMPARE(JSON::encode(-0.0), "-0");
        QCOMPARE(JSON::encode(1e300), "1e+300");
        QCOMPARE(JSON::encode(std::numeric_limits<qint64>::min()), "-9223372036854775808");
        QCOMPARE(JSON::encode(std::numeric_limits<quint64>::max()), "18446744073709551615");
        QCOMPARE(JSON::encode(QList<double>{1, 2.5}), "[1,2.5]");
        QCOMPARE(JSON::encode(QList<std::optional<double>>{1, std::nullopt}), "[1,null]");
        QCOMPARE(JSON::encode(QList<double>()), "[]");
        QCOMPARE(JSON::encode(QStringLiteral("\"\\/\b\f\n\r\t\u0001\u001f\u007f\u00e9\U0001f600")),
                 "\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\u007f\u00e9\U0001f600\"");
    }

    void everyDoubleSurvives() {
        quint64 bits = 0x9E3779B97F4A7C15;
        for (int i = 0; i < 20000; ++i) {
            bits = bits * 6364136223846793005 + 1442695040888963407;
            const double value = std::bit_cast<double>(bits);
            if (!std::isfinite(value))
                continue;
            QCOMPARE(std::bit_cast<quint64>(JSON::decode<double>(JSON::encode(value))), bits);
        }
    }

    void whatJSONCannotHoldIsNotEncoded() {
        QVERIFY_EXCEPTION_THROWN(JSON::encode(std::numeric_limits<double>::infinity()), EncodingError);
        QVERIFY_EXCEPTION_THROWN(JSON::encode(std::nan("")), EncodingError);
        QVERIFY_EXCEPTION_THROWN(JSON::encode(QString(QChar(0xD800))), EncodingError);
        QVERIFY_EXCEPTION_THROWN(JSON::encode(QString(QChar(0xDC00)) + u'a'), EncodingError);
    }
};

QTEST_GUILESS_MAIN(JSONTest)
#include "JSONTest.moc"
