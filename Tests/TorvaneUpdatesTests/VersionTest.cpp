#include "TorvaneUpdates/Version.h"

#include <QStringList>
#include <QTest>

using namespace torvane::Updates;

namespace {

/// All versions of up to so many of these pieces.
QStringList versionsOf(int most) {
    const QStringList pieces{QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("10"), QStringLiteral("."),
                             QStringLiteral("a"), QStringLiteral("B"), QStringLiteral("-")};
    QStringList all{QString()};
    for (qsizetype from = 0, length = 0; length < most; ++length) {
        const qsizetype to = all.size();
        for (; from < to; ++from) {
            for (const QString& piece : pieces)
                all.append(all[from] + piece);
        }
    }
    return all;
}

int sign(std::strong_ordering order) {
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

} // namespace

class VersionTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anOlderVersionComesFirst_data() {
        QTest::addColumn<QString>("older");
        QTest::addColumn<QString>("newer");
        const auto row = [](const char* older, const char* newer) {
            QTest::addRow("%s < %s", older, newer) << QString::fromUtf8(older) << QString::fromUtf8(newer);
        };
        row("0.3.0", "0.3.1");
        row("0.3.9", "0.3.10");
        row("0.9", "0.10");
        row("1.0", "1.0.1");
        row("1.0", "1.1");
        row("1.9.9", "2");
        row("1", "1.0.0.1");
        row("1.0b1", "1.0");
        row("1.0b1", "1.0b2");
        row("1.0b9", "1.0b10");
        row("1.0a9", "1.0b1");
        row("1.0b", "1.0b1");
        row("1.0b1", "1.0.0");
        row("1.0.0b1", "1.0");
        row("1.0.b1", "1.0");
        row("1.0b1", "1.0.1");
        row("1.0b1", "1.0.0.1");
        row("0.9", "1.0b1");
        row("1.0.1b1", "1.0.1");
        row("1.0", "1.0.1b1");
        row("1.0beta", "1.0rc");
        row("1.0~", "1.0");
        row("1.0~1", "1.0");
        row("1.0+1", "1.0");
        row("1.0\xd9\xa1", "1.0"); // A digit of another script counts as a letter.
        row("4294967296", "4294967297");
        row("18446744073709551615", "18446744073709551616");
        row("99999999999999999999999999999", "100000000000000000000000000000");
        row("", "0.1");
        row("v1.0", "1.0");
    }

    void anOlderVersionComesFirst() {
        QFETCH(QString, older);
        QFETCH(QString, newer);
        QCOMPARE(sign(compareVersions(older, newer)), -1);
        QCOMPARE(sign(compareVersions(newer, older)), 1);
    }

    void versionsOfTheSameMeaningAreEqual_data() {
        QTest::addColumn<QString>("one");
        QTest::addColumn<QString>("other");
        const auto row = [](const char* one, const char* other) {
            QTest::addRow("%s = %s", one, other) << QString::fromUtf8(one) << QString::fromUtf8(other);
        };
        row("0.3.0", "0.3.0");
        row("1.0", "1.0.0");
        row("1", "1.0.0.0");
        row("1.0b1", "1.0.0b1");
        row("1b1", "1.0b1");
        row("1.0", "1.0-rc1");
        row("1.0.2", "1.0.2-3-g1234567");
        row("1.0-1", "1.0-2");
        row("1.01", "1.1");
        row("01.0", "1.0");
        row("1.0000000000000000000000000000001", "1.1");
        row("1,2", "1.2");
        row("1 2", "1.2");
        row("1_2", "1.2");
        row("1.", "1");
        row(" 1.2 ", "1.2");
        row("", "-1");
        row("1.0 b1", "1.0b1");
    }

    void versionsOfTheSameMeaningAreEqual() {
        QFETCH(QString, one);
        QFETCH(QString, other);
        QCOMPARE(sign(compareVersions(one, other)), 0);
        QCOMPARE(sign(compareVersions(other, one)), 0);
    }

    void allOrdersAgree() {
        QStringList versions = versionsOf(4);
        QCOMPARE(versions.size(), 1 + 7 + 49 + 343 + 2401);
        std::sort(versions.begin(), versions.end(),
                  [](const QString& a, const QString& b) { return compareVersions(a, b) < 0; });
        // The place of each among the sorted, where equal ones share theirs: every pair must be ordered as these are.
        QList<int> ranks{0};
        for (qsizetype i = 1; i < versions.size(); ++i)
            ranks.append(ranks.last() + sign(compareVersions(versions[i], versions[i - 1])));
        QVERIFY(ranks.last() > 100);
        for (qsizetype i = 0; i < versions.size(); i += 31) {
            for (qsizetype j = 0; j < versions.size(); ++j) {
                const int order = sign(compareVersions(versions[i], versions[j]));
                if (order != sign(ranks[i] <=> ranks[j]) || order != -sign(compareVersions(versions[j], versions[i])))
                    QFAIL(qPrintable(versions[i] + QLatin1String(" against ") + versions[j]));
            }
        }
    }
};

QTEST_GUILESS_MAIN(VersionTest)
#include "VersionTest.moc"
