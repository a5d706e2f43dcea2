#include "Options.h"

#include <QDir>
#include <QTest>

using namespace torvane;

namespace {

Options parsed(const char* line) {
    return Options::from(QStringLiteral("velisk-relay ").append(QLatin1String(line)).split(u' ', Qt::SkipEmptyParts));
}

} // namespace

class OptionsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachModeIsChosenByItsOption() {
        QCOMPARE(parsed("--out a.json").mode, Options::Mode::publish);
        QCOMPARE(parsed("--out a.json").document, QDir::current().absoluteFilePath(QStringLiteral("a.json")));
        QCOMPARE(parsed("--serve localhost:8643").mode, Options::Mode::serve);
        QCOMPARE(parsed("--serve localhost:8643 --out /b.json").mode, Options::Mode::serve);
        QCOMPARE(parsed("--check /b.json").mode, Options::Mode::check);
        QCOMPARE(parsed("--check /b.json").document, QStringLiteral("/b.json"));
        QCOMPARE(parsed("--print-table").mode, Options::Mode::printTable);
        QCOMPARE(parsed("--help").mode, Options::Mode::help);
        QCOMPARE(parsed("--version").mode, Options::Mode::version);
        QCOMPARE(parsed("--out a --table t --verbose").table, QStringLiteral("t"));
        QVERIFY(parsed("--out a --verbose").isVerbose);
    }

    void anAddressIsAHostAndAPort() {
        QCOMPARE(parsed("--serve localhost:8643").port, 8643);
        QCOMPARE(parsed("--serve [::1]:1").host, QStringLiteral("::1"));
        for (const char* line :
             {"--serve localhost", "--serve :8643", "--serve localhost:0", "--serve localhost:99999",
              "--serve https://localhost:8643", "--serve localhost:8643/x", "--serve a@localhost:8643"})
            QVERIFY_EXCEPTION_THROWN(parsed(line), UsageError);
    }

    void whatMakesNoSenseIsRefused() {
        for (const char* line : {"", "--out", "--verbose", "--out a --check b", "--serve localhost:1 --print-table",
                                 "a.json", "--out a b", "--unknown"})
            QVERIFY_EXCEPTION_THROWN(parsed(line), UsageError);
    }
};

QTEST_GUILESS_MAIN(OptionsTest)
#include "OptionsTest.moc"
