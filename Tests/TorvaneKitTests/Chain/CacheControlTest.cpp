#include "Chain/CacheControl.h"

#include <QTest>

using namespace torvane;

class CacheControlTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFieldIsRead_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("noStore");
        QTest::addColumn<bool>("noCache");
        QTest::addColumn<qint64>("maxAge"); // -1: none
        const auto row = [](const char* value, bool noStore, bool noCache, qint64 maxAge) {
            QTest::newRow(value) << QByteArray(value) << noStore << noCache << maxAge;
        };
        row("", false, false, -1);
        row("max-age=60", false, false, 60);
        row("MAX-AGE=60", false, false, 60);
        row("public , max-age = 60 ,must-revalidate", false, false, 60);
        row("max-age=\"60\"", false, false, 60);
        row("max-age=0", false, false, 0);
        row("max-age=4294967296", false, false, 2147483648);
        row("max-age=99999999999999999999999999", false, false, 2147483648);
        row("max-age=60, max-age=30", false, false, 30);
        row("max-age=6.5", false, false, 0);
        row("max-age=+5", false, false, 0);
        row("max-age=x", false, false, 0);
        row("max-age", false, false, 0);
        row("s-maxage=60", false, false, -1);
        row("no-store", true, false, -1);
        row("no-cache", false, true, -1);
        row("no-cache=\"a, no-store, \\\" max-age=5\"", false, true, -1);
        row("x=\"no-store\", no-cache", false, true, -1);
        row("no-storeroom, xno-cache", false, false, -1);
        row(",,no-store,,", true, false, -1);
        row("x=\"open, no-store", false, false, -1);
    }

    void aFieldIsRead() {
        QFETCH(QByteArray, value);
        QFETCH(bool, noStore);
        QFETCH(bool, noCache);
        QFETCH(qint64, maxAge);
        const CacheControl control = parseCacheControl(value);
        QCOMPARE(control.noStore, noStore);
        QCOMPARE(control.noCache, noCache);
        QCOMPARE(control.maxAge ? qint64{control.maxAge->count()} : -1, maxAge);
    }
};

QTEST_GUILESS_MAIN(CacheControlTest)
#include "CacheControlTest.moc"
