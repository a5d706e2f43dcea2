#include "Support/ISO8601.h"

#include <QTest>

using namespace torvane;

class ISO8601Test final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void internetDateTimesAreRead_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("ms");
        QTest::newRow("Z without fraction") << "2025-05-01T12:00:00Z" << qint64(1746100800000);
        QTest::newRow("Z with milliseconds") << "2025-05-01T12:00:00.123Z" << qint64(1746100800123);
        QTest::newRow("one digit of fraction") << "2025-05-01T12:00:00.5Z" << qint64(1746100800500);
        QTest::newRow("nine digits are cut to milliseconds")
            << "2025-05-01T12:00:00.999999999Z" << qint64(1746100800999);
        QTest::newRow("east of Greenwich") << "2025-05-01T14:30:00+02:30" << qint64(1746100800000);
        QTest::newRow("west of Greenwich") << "2025-05-01T07:00:00.123-05:00" << qint64(1746100800123);
        QTest::newRow("zero offset") << "2025-05-01T12:00:00-00:00" << qint64(1746100800000);
        QTest::newRow("leap day") << "2024-02-29T00:00:00Z" << qint64(1709164800000);
        QTest::newRow("leap second is the next second") << "2016-12-31T23:59:60Z" << qint64(1483228800000);
        QTest::newRow("before 1970") << "1969-12-31T23:59:59Z" << qint64(-1000);
        QTest::newRow("the merge") << "2022-09-15T06:42:59Z" << qint64(1663224179000);
    }

    void internetDateTimesAreRead() {
        QFETCH(QString, text);
        QFETCH(qint64, ms);
        const std::optional<QDateTime> time = parseInternetDateTime(text);
        QVERIFY(time);
        QCOMPARE(time->toMSecsSinceEpoch(), ms);
        QCOMPARE(time->timeSpec(), Qt::UTC);
    }

    void everythingElseIsRefused_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << "";
        QTest::newRow("no offset") << "2025-05-01T12:00:00";
        QTest::newRow("date only") << "2025-05-01";
        QTest::newRow("lower-case t") << "2025-05-01t12:00:00Z";
        QTest::newRow("lower-case z") << "2025-05-01T12:00:00z";
        QTest::newRow("blank instead of T") << "2025-05-01 12:00:00Z";
        QTest::newRow("no seconds") << "2025-05-01T12:00Z";
        QTest::newRow("empty fraction") << "2025-05-01T12:00:00.Z";
        QTest::newRow("comma as point") << "2025-05-01T12:00:00,5Z";
        QTest::newRow("thirteenth month") << "2025-13-01T12:00:00Z";
        QTest::newRow("no such day") << "2025-02-29T12:00:00Z";
        QTest::newRow("hour 24") << "2025-05-01T24:00:00Z";
        QTest::newRow("minute 60") << "2025-05-01T12:60:00Z";
        QTest::newRow("second 61") << "2025-05-01T12:00:61Z";
        QTest::newRow("offset of 24 hours") << "2025-05-01T12:00:00+24:00";
        QTest::newRow("offset of 60 minutes") << "2025-05-01T12:00:00+00:60";
        QTest::newRow("offset without colon") << "2025-05-01T12:00:00+0200";
        QTest::newRow("leading blank") << " 2025-05-01T12:00:00Z";
        QTest::newRow("trailing newline") << "2025-05-01T12:00:00Z\n";
        QTest::newRow("five-digit year") << "12025-05-01T12:00:00Z";
        QTest::newRow("year zero") << "0000-01-01T00:00:00Z";
        QTest::newRow("Arabic digits") << QString::fromUtf8("٢٠٢٥-05-01T12:00:00Z");
        QTest::newRow("words") << "yesterday";
    }

    void everythingElseIsRefused() {
        QFETCH(QString, text);
        QVERIFY(!parseInternetDateTime(text));
    }
};

QTEST_GUILESS_MAIN(ISO8601Test)
#include "ISO8601Test.moc"
