#include "Contract.h"

#include "Support/JSONErrors.h"
#include "TransferCost.h"

#include <QTest>

using namespace torvane;

class ContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// As the functions' own projects publish them.
    void selectorsAreTheFirstBytesOfTheSignaturesHash_data() {
        QTest::addColumn<QString>("selector");
        QTest::newRow("latestRoundData()") << QStringLiteral("0xfeaf968c");
        QTest::newRow("getRoundData(uint80)") << QStringLiteral("0x9a6fc8f5");
        QTest::newRow("decimals()") << QStringLiteral("0x313ce567");
        QTest::newRow("observe(uint32[])") << QStringLiteral("0x883bdbfd");
        QTest::newRow("slot0()") << QStringLiteral("0x3850c7bd");
        QTest::newRow("totalSupply()") << QStringLiteral("0x18160ddd");
        QTest::newRow("getL1Fee(bytes)") << QStringLiteral("0x49948e0e");
        QTest::newRow("getOperatorFee(uint256)") << QStringLiteral("0x275aedd2");
        QTest::newRow("mETHToETH(uint256)") << QStringLiteral("0x5890c11c");
    }

    void selectorsAreTheFirstBytesOfTheSignaturesHash() {
        QFETCH(QString, selector);
        const QString signature = QString::fromLatin1(QTest::currentDataTag());
        QCOMPARE(contractCall({}, signature).data, selector);
        QVERIFY(isSignature(signature));
    }

    void argumentsFollowAsWords() {
        const ContractCall call = contractCall(QStringLiteral("0x1"), u"getRoundData(uint80)", {Word(7, 500)});
        QCOMPARE(call.to, QStringLiteral("0x1"));
        QCOMPARE(call.data, QStringLiteral("0x9a6fc8f5") + QString(47, u'0') + QStringLiteral("7") +
                                QStringLiteral("00000000000001f4"));
    }

    void bytesFollowTheirPlaceAndLengthFilledUpToWords() {
        const ContractCall call = contractCallWithBytes({}, u"getL1Fee(bytes)", QByteArray(33, '\xab'));
        QCOMPARE(call.data, QStringLiteral("0x49948e0e") + QString(62, u'0') + QStringLiteral("20") +
                                QString(62, u'0') + QStringLiteral("21") + QStringLiteral("ab").repeated(33) +
                                QString(62, u'0'));
    }

    /// The examples of EIP-55.
    void anAddressHasItsChecksum() {
        for (const char* address :
             {"0x52908400098527886E0F7030069857D2E4169EE7", "0xde709f2102306220921060314715629080e2fb77",
              "0x5aAeb6053F3E94C9b9A09f33669435E7Ef1BeAed", "0xD1220A0cf47c7B9Be7A2E6BA89F429762e7b9aDb"})
            QVERIFY2(isChecksummedAddress(QString::fromLatin1(address)), address);
        for (const char* address :
             {"0x5aaeb6053F3E94C9b9A09f33669435E7Ef1BeAed", "0x5aAeb6053F3E94C9b9A09f33669435E7Ef1BeAec",
              "5aAeb6053F3E94C9b9A09f33669435E7Ef1BeAed", "0x5aAeb6053F3E94C9b9A09f33669435E7Ef1BeA", "0x", "",
              "0xgaAeb6053F3E94C9b9A09f33669435E7Ef1BeAed"})
            QVERIFY2(!isChecksummedAddress(QString::fromLatin1(address)), address);
    }

    void whatIsNoSignatureIsNone() {
        for (const char* text : {"", "getRate", "getRate( )", "getRate(uint256", "get rate()", "1rate()", "rate()x"})
            QVERIFY2(!isSignature(QString::fromLatin1(text)), text);
    }

    /// By hand, after the yellow paper's appendix B: 0x02, a list of 46 bytes: the chain 8453, nonce 7, tip 600000,
    /// price 6000000, gas 21000, the address, 0.01 ether, no data, no access list.
    void theSampleTransferIsEncodedAsTransactionsAre() {
        QCOMPARE(unsignedTransfer(8453, 6'000'000).toHex(), QByteArray("02"
                                                                       "ee"
                                                                       "822105"
                                                                       "07"
                                                                       "830927c0"
                                                                       "835b8d80"
                                                                       "825208"
                                                                       "9476656c69736b0000000000000000000000000bed"
                                                                       "872386f26fc10000"
                                                                       "80"
                                                                       "c0"));
        // Numbers of eight bytes make it longer than a short list may be.
        const QByteArray longest = unsignedTransfer(Q_UINT64_C(1) << 60, ~Q_UINT64_C(0));
        QCOMPARE(longest.first(3).toHex(), "02f8" + QByteArray::number(longest.size() - 3, 16));
    }

    void wordsAreReadAsWholeNumbersOrNotAtAll() {
        const QString one = QStringLiteral("0x") + QString(63, u'0') + QStringLiteral("1");
        QCOMPARE(Words::fromText(one).at(0).toUnsigned(), std::optional<quint64>(1));
        QCOMPARE(Words::fromText(one + QString(64, u'f')).at(1).toSigned(), std::optional<qint64>(-1));
        QVERIFY(!Words::fromText(QStringLiteral("0x") + QString(64, u'f')).at(0).toUnsigned());
        QVERIFY(!Words::fromText(QStringLiteral("0x80") + QString(62, u'0')).at(0).toSigned());
        for (const char* text : {"", "0x0", "0x12", "1234", "0xzz"})
            QVERIFY_EXCEPTION_THROWN(Words::fromText(QLatin1String(text)), DecodingError);
        QVERIFY_EXCEPTION_THROWN(Words::fromText(one).at(1), DecodingError);
        QCOMPARE(Words::fromText(QStringLiteral("0x")).count(), 0);
    }

    void amountsLargerThanAnyIntegerOfOursAreScaled() {
        QCOMPARE(Word(Q_UINT64_C(1), Q_UINT64_C(0)).scaled(0), 0x1p64);
        QCOMPARE(Words::fromText(QStringLiteral("0x") + QString(64, u'f')).at(0).scaled(0), 0x1p256);
        // 9.5 million ether and one wei.
        const auto wei = static_cast<unsigned __int128>(9'500'000) * 1'000'000'000'000'000'000 + 1;
        QCOMPARE(Word(static_cast<quint64>(wei >> 64), static_cast<quint64>(wei)).scaled(18), 9'500'000.0);
    }
};

QTEST_GUILESS_MAIN(ContractTest)
#include "ContractTest.moc"
