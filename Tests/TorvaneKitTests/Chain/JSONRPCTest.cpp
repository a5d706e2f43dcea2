#include "Chain/JSONRPC.h"

#include <QTest>

#include <limits>

using namespace torvane;

namespace {

using GasPriceResponse = JSONRPCResponse<HexQuantity>;

/// What decoding this JSON as a quantity fails with; empty when it succeeds.
QByteArray refusal(const QByteArray& json) {
    try {
        JSON::decode<HexQuantity>(json);
        return {};
    } catch (const DecodingError& error) {
        return error.description();
    }
}

/// What asking the answer for its value fails with.
JSONRPCFailure failureOf(const QByteArray& answer) {
    const auto response = JSON::decode<GasPriceResponse>(answer);
    try {
        const HexQuantity value = response.value();
        qFatal("There is a value: %llu", value.value);
    } catch (const JSONRPCFailure& failure) {
        return failure;
    }
}

} // namespace

class JSONRPCTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aQuantityIsHexadecimalBehindItsPrefix_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<quint64>("value");
        const auto row = [](const char* json, quint64 value) { QTest::newRow(json) << QByteArray(json) << value; };
        row(R"("0x0")", 0);
        row(R"("0x1A")", 26);
        row(R"("0x1a")", 26);
        row(R"("0x01a")", 26);
        row(R"("0x00000000000000000000001a")", 26);
        row(R"("0x3b9aca00")", 1'000'000'000);
        row(R"("0xffffffffffffffff")", std::numeric_limits<quint64>::max());
        row(R"("\u0030x2")", 2);
    }

    void aQuantityIsHexadecimalBehindItsPrefix() {
        QFETCH(QByteArray, json);
        QFETCH(quint64, value);
        QCOMPARE(JSON::decode<HexQuantity>(json).value, value);
    }

    void anyOtherTextIsNoQuantity_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("nothing behind the prefix") << QByteArray(R"("0x")");
        QTest::newRow("no prefix") << QByteArray(R"("1a")");
        QTest::newRow("empty") << QByteArray(R"("")");
        QTest::newRow("a capital prefix") << QByteArray(R"("0X1a")");
        QTest::newRow("two prefixes") << QByteArray(R"("0x0x1a")");
        QTest::newRow("more than 64 bits") << QByteArray(R"("0x10000000000000000")");
        QTest::newRow("more than 64 bits behind zeros") << QByteArray(R"("0x00010000000000000000")");
        QTest::newRow("no digit") << QByteArray(R"("0x1g")");
        QTest::newRow("a negative quantity") << QByteArray(R"("-0xfd")");
        QTest::newRow("a minus") << QByteArray(R"("0x-1")");
        QTest::newRow("a plus") << QByteArray(R"("0x+1")");
        QTest::newRow("a leading blank") << QByteArray(R"(" 0x1")");
        QTest::newRow("a blank inside") << QByteArray(R"("0x 1")");
        QTest::newRow("a trailing blank") << QByteArray(R"("0x1 ")");
        QTest::newRow("a zero byte") << QByteArray(R"("0x1\u0000")");
        QTest::newRow("a fraction") << QByteArray(R"("0x1.8")");
        QTest::newRow("an exponent") << QByteArray(R"("0x1p4")");
        QTest::newRow("wide digits") << QByteArray(R"("0x\uff11")");
    }

    void anyOtherTextIsNoQuantity() {
        QFETCH(QByteArray, json);
        QCOMPARE(refusal(json), QByteArray("Invalid hexadecimal quantity"));
    }

    void aQuantityIsAJSONString_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<DecodingError::Cause>("cause");
        QTest::newRow("number") << QByteArray("26") << DecodingError::Cause::wrongType;
        QTest::newRow("object") << QByteArray(R"({"value":"0x1a"})") << DecodingError::Cause::wrongType;
        QTest::newRow("list") << QByteArray(R"(["0x1a"])") << DecodingError::Cause::wrongType;
        QTest::newRow("null") << QByteArray("null") << DecodingError::Cause::null;
    }

    void aQuantityIsAJSONString() {
        QFETCH(QByteArray, json);
        QFETCH(DecodingError::Cause, cause);
        try {
            JSON::decode<HexQuantity>(json);
            QFAIL("It was accepted.");
        } catch (const DecodingError& error) {
            QCOMPARE(error.cause(), cause);
        }
    }

    void aQuantityIsWrittenInLowerCaseWithoutLeadingZeros() {
        QCOMPARE(JSON::encode(HexQuantity{0}), QByteArray(R"("0x0")"));
        QCOMPARE(JSON::encode(HexQuantity{20}), QByteArray(R"("0x14")"));
        QCOMPARE(JSON::encode(HexQuantity{0xABCDEF}), QByteArray(R"("0xabcdef")"));
        QCOMPARE(JSON::encode(HexQuantity{std::numeric_limits<quint64>::max()}), QByteArray(R"("0xffffffffffffffff")"));
    }

    void gweiAreNotRounded() {
        QCOMPARE(HexQuantity{1'000'000'000}.gwei(), 1.0);
        QCOMPARE(HexQuantity{6'000'001}.gwei(), 0.006000001);
        QVERIFY(HexQuantity{1}.gwei() == 1e-9);
        QVERIFY(HexQuantity{std::numeric_limits<quint64>::max()}.gwei() == 18446744073709551616.0 / 1e9);
    }

    void aRequestSaysItsVersionAndItsParameters() {
        const JSONRPCRequest request(1, QStringLiteral("eth_gasPrice"), EmptyRPCParams{});
        QCOMPARE(JSON::encode(request), QByteArray(R"({"jsonrpc":"2.0","id":1,"method":"eth_gasPrice","params":[]})"));
    }

    void aResultIsTheValue() {
        const auto response = JSON::decode<GasPriceResponse>(R"({"jsonrpc":"2.0","id":1,"result":"0x3b9aca00"})");
        QCOMPARE(response.value().value, quint64{1'000'000'000});
        QCOMPARE(response.value().gwei(), 1.0);
    }

    void versionAndIdOfAnAnswerAreNotRead_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("another id") << QByteArray(R"({"jsonrpc":"2.0","id":99,"result":"0x1"})");
        QTest::newRow("an id in words") << QByteArray(R"({"jsonrpc":"2.0","id":"one","result":"0x1"})");
        QTest::newRow("no id") << QByteArray(R"({"jsonrpc":"2.0","id":null,"result":"0x1"})");
        QTest::newRow("another version") << QByteArray(R"({"jsonrpc":1,"result":"0x1"})");
        QTest::newRow("a null error") << QByteArray(R"({"error":null,"result":"0x1"})");
        QTest::newRow("more members") << QByteArray(R"({"result":"0x1","usage":{"left":[3]}})");
    }

    void versionAndIdOfAnAnswerAreNotRead() {
        QFETCH(QByteArray, answer);
        QCOMPARE(JSON::decode<GasPriceResponse>(answer).value().value, quint64{1});
    }

    void anErrorCountsEvenBesideAResult_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("alone") << QByteArray(R"({"id":1,"error":{"code":-32005,"message":"slow down"}})");
        QTest::newRow("beside a result") << QByteArray(
            R"({"result":"0x1","error":{"code":-32005,"message":"slow down"}})");
        QTest::newRow("beside null") << QByteArray(R"({"result":null,"error":{"code":-32005,"message":"slow down"}})");
        QTest::newRow("with more data") << QByteArray(
            R"({"id":null,"error":{"code":-32005,"message":"slow down","data":{"rate":{"left":0}}}})");
    }

    void anErrorCountsEvenBesideAResult() {
        QFETCH(QByteArray, answer);
        const JSONRPCFailure failure = failureOf(answer);
        QCOMPARE(failure, JSONRPCFailure::remote({-32005, QStringLiteral("slow down")}));
        QVERIFY(!(failure == JSONRPCFailure::missingResult()));
    }

    void anAnswerWithNeitherHasNoResult_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("neither key") << QByteArray(R"({"jsonrpc":"2.0","id":1})");
        QTest::newRow("null") << QByteArray(R"({"jsonrpc":"2.0","id":1,"result":null})");
        QTest::newRow("twice null") << QByteArray(R"({"result":null,"error":null})");
        QTest::newRow("empty") << QByteArray("{}");
    }

    void anAnswerWithNeitherHasNoResult() {
        QFETCH(QByteArray, answer);
        QCOMPARE(failureOf(answer), JSONRPCFailure::missingResult());
    }

    void anAnswerOfAnotherShapeIsNotDecoded_data() {
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("an error without a code") << QByteArray(R"({"error":{"message":"no"}})");
        QTest::newRow("an error without a message") << QByteArray(R"({"error":{"code":-1}})");
        QTest::newRow("an error in words") << QByteArray(R"({"error":"no"})");
        QTest::newRow("a code in words") << QByteArray(R"({"error":{"code":"-1","message":"no"}})");
        QTest::newRow("a fractional code") << QByteArray(R"({"error":{"code":-1.5,"message":"no"}})");
        QTest::newRow("a number for a result") << QByteArray(R"({"result":1})");
        QTest::newRow("a batch") << QByteArray(R"([{"result":"0x1"}])");
        QTest::newRow("a page") << QByteArray("<html><body>Just a moment...</body></html>");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("two answers") << QByteArray(R"({"result":"0x1"}{"result":"0x1"})");
    }

    void anAnswerOfAnotherShapeIsNotDecoded() {
        QFETCH(QByteArray, answer);
        QVERIFY_EXCEPTION_THROWN(JSON::decode<GasPriceResponse>(answer), DecodingError);
    }

    void anErrorIsWrittenAsItIsRead() {
        const JSONRPCError error{-32601, QStringLiteral("no such method")};
        QCOMPARE(JSON::decode<JSONRPCError>(JSON::encode(error)), error);
    }
};

QTEST_GUILESS_MAIN(JSONRPCTest)
#include "JSONRPCTest.moc"
