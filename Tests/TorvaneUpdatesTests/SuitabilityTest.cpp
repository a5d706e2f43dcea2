#include "TorvaneUpdates/Suitability.h"

#include <QTest>

#include <sys/personality.h>
#include <sys/utsname.h>

using namespace torvane::Updates;

namespace {

const QDateTime noon({2026, 11, 21}, {12, 0}, Qt::UTC);

AppcastItem item(const char* version) {
    return {.version = QString::fromLatin1(version), .displayVersion = QString::fromLatin1(version)};
}

Suitability seeker(const char* runningVersion = "1.0") {
    return {.runningVersion = QString::fromLatin1(runningVersion),
            .product = QStringLiteral("org.velisk.Torvane"),
            .system = {.version = QStringLiteral("6.1.0-18-amd64"), .architecture = QStringLiteral("x86_64")},
            .now = noon};
}

/// The version of the best one, or "none".
QString best(const QList<AppcastItem>& items, const Suitability& to) {
    const std::optional<AppcastItem> found = bestItem(items, to);
    return found ? found->version : QStringLiteral("none");
}

QString best(const AppcastItem& only, const Suitability& to = seeker()) {
    return best(QList<AppcastItem>{only}, to);
}

} // namespace

class SuitabilityTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theHighestVersionAboveTheRunningOneIsBest() {
        const QList<AppcastItem> items{item("0.9"), item("1.2"), item("1.10"), item("1.10b3"), item("1.0.0")};
        QCOMPARE(best(items, seeker("1.0")), QStringLiteral("1.10"));
        QCOMPARE(best(items, seeker("1.2")), QStringLiteral("1.10"));
        QCOMPARE(best(items, seeker("1.10b3")), QStringLiteral("1.10"));
    }

    void theSameOrAnOlderVersionIsNone() {
        QCOMPARE(best({item("1.0"), item("1.0.0"), item("1.0b9"), item("0.9"), item("1.0-2")}, seeker()),
                 QStringLiteral("none"));
        QCOMPARE(best(QList<AppcastItem>(), seeker()), QStringLiteral("none"));
    }

    void ofEqualVersionsTheFirstIsBest() {
        AppcastItem first = item("2.0");
        first.length = 1;
        AppcastItem second = item("2");
        second.length = 2;
        QCOMPARE(bestItem({first, second}, seeker())->length, qint64(1));
    }

    void anItemForAnotherMachineDoesNotSuit_data() {
        QTest::addColumn<QString>("os");
        QTest::addColumn<QString>("minimum");
        QTest::addColumn<QString>("architecture");
        QTest::addColumn<QString>("product");
        QTest::addColumn<bool>("suits");
        const auto row = [](const char* os, const char* minimum, const char* architecture, const char* product,
                            bool suits) {
            QTest::addRow("%s, %s, %s, %s", os, minimum, architecture, product)
                << QString::fromLatin1(os) << QString::fromLatin1(minimum) << QString::fromLatin1(architecture)
                << QString::fromLatin1(product) << suits;
        };
        row("", "", "", "", true);
        row("linux", "6.1", "x86_64", "org.velisk.Torvane", true);
        row("Linux", "", "", "", true);
        row("macos", "", "", "", false);
        row("windows-x64", "", "", "", false);
        row("", "6.1.0", "", "", true);
        row("", "4.19", "", "", true);
        row("", "6.1.1", "", "", false);
        row("", "10.13", "", "", false);
        row("", "", "aarch64", "", false);
        row("", "", "", "org.example.Other", false);
    }

    void anItemForAnotherMachineDoesNotSuit() {
        QFETCH(QString, os);
        QFETCH(QString, minimum);
        QFETCH(QString, architecture);
        QFETCH(QString, product);
        QFETCH(bool, suits);
        AppcastItem other = item("2.0");
        other.os = os;
        other.minimumSystemVersion = minimum;
        other.architecture = architecture;
        other.product = product;
        QCOMPARE(best({other, item("1.5")}, seeker()), suits ? QStringLiteral("2.0") : QStringLiteral("1.5"));
        Suitability byHand = seeker();
        byHand.isAskedFor = true;
        QCOMPARE(best(other, byHand), suits ? QStringLiteral("2.0") : QStringLiteral("none"));
    }

    void anItemOfAnotherChannelDoesNotSuit() {
        AppcastItem beta = item("2.0");
        beta.channel = QStringLiteral("beta");
        beta.isCritical = true;
        Suitability byHand = seeker();
        byHand.isAskedFor = true;
        QCOMPARE(best(beta), QStringLiteral("none"));
        QCOMPARE(best(beta, byHand), QStringLiteral("none"));
    }

    void aPhasedUpdateArrivesByAndBy_data() {
        QTest::addColumn<double>("place");
        QTest::addColumn<int>("hours");
        QTest::addColumn<bool>("arrives");
        QTest::newRow("the first, at its date") << 0.0 << 0 << true;
        QTest::newRow("the first, before it") << 0.0 << -1 << false;
        QTest::newRow("the second, too early") << 0.15 << 9 << false;
        QTest::newRow("the second") << 0.15 << 10 << true;
        QTest::newRow("in the middle, too early") << 0.5 << 29 << false;
        QTest::newRow("in the middle") << 0.5 << 30 << true;
        QTest::newRow("the last, too early") << 0.999 << 59 << false;
        QTest::newRow("the last") << 0.999 << 60 << true;
    }

    void aPhasedUpdateArrivesByAndBy() {
        QFETCH(double, place);
        QFETCH(int, hours);
        QFETCH(bool, arrives);
        AppcastItem phased = item("2.0");
        phased.phasedRolloutInterval = std::chrono::hours(10);
        phased.pubDate = noon.addSecs(-hours * 3600);
        Suitability to = seeker();
        to.rolloutPlace = place;
        QCOMPARE(best(phased, to), arrives ? QStringLiteral("2.0") : QStringLiteral("none"));
        QCOMPARE(best({phased, item("1.5")}, to), arrives ? QStringLiteral("2.0") : QStringLiteral("1.5"));
    }

    void nobodyIsHeldBackFromWhatIsCriticalOrAskedFor() {
        AppcastItem phased = item("2.0");
        phased.phasedRolloutInterval = std::chrono::hours(10);
        phased.pubDate = noon;
        Suitability last = seeker();
        last.rolloutPlace = 0.99;
        QCOMPARE(best(phased, last), QStringLiteral("none"));
        phased.isCritical = true;
        QCOMPARE(best(phased, last), QStringLiteral("2.0"));
        phased.isCritical = false;
        last.isAskedFor = true;
        QCOMPARE(best(phased, last), QStringLiteral("2.0"));
    }

    void withoutADateThereAreNoPhases() {
        AppcastItem phased = item("2.0");
        phased.phasedRolloutInterval = std::chrono::hours(10);
        Suitability last = seeker();
        last.rolloutPlace = 0.99;
        QCOMPARE(best(phased, last), QStringLiteral("2.0"));
    }

    void withoutAnIntervalADateAheadOfTheClockHoldsNothingBack() {
        AppcastItem dated = item("2.0");
        dated.pubDate = noon.addDays(30);
        QCOMPARE(best(dated, seeker()), QStringLiteral("2.0"));
    }

    void aRolloutOfAgesHoldsBackAndDoesNotOverflow() {
        AppcastItem phased = item("2.0");
        phased.phasedRolloutInterval = std::chrono::seconds(std::numeric_limits<qint64>::max());
        phased.pubDate = noon.addYears(-1000);
        Suitability last = seeker();
        last.rolloutPlace = 0.99;
        QCOMPARE(best(phased, last), QStringLiteral("none"));
    }

    void aSkippedVersionAndOlderOnesAreNotOffered() {
        Suitability skipping = seeker();
        skipping.skippedVersion = QStringLiteral("1.5.0");
        QCOMPARE(best({item("1.4"), item("1.5")}, skipping), QStringLiteral("none"));
        QCOMPARE(best({item("1.4"), item("1.5"), item("1.6")}, skipping), QStringLiteral("1.6"));
        skipping.isAskedFor = true;
        QCOMPARE(best({item("1.4"), item("1.5")}, skipping), QStringLiteral("1.5"));
        skipping.isAskedFor = false;
        AppcastItem critical = item("1.5");
        critical.isCritical = true;
        QCOMPARE(best(critical, skipping), QStringLiteral("1.5"));
    }

    void whatIsCriticalForOlderVersionsIsSoForThemAlone() {
        AppcastItem update = item("2.0");
        update.isCritical = true;
        update.criticalBelow = QStringLiteral("1.5");
        QVERIFY(bestItem({update}, seeker("1.4"))->isCritical);
        QVERIFY(!bestItem({update}, seeker("1.5"))->isCritical);
        QVERIFY(!bestItem({update}, seeker("1.6"))->isCritical);
    }

    void thisSystemIsTheKernels() {
        utsname names{};
        QCOMPARE(::uname(&names), 0);
        QCOMPARE(System::current().version, QString::fromLatin1(names.release));
    }

    void aProgramOfTheKernelsOwnKindIsNamedAsTheKernelNamesTheMachine() {
        utsname names{};
        QCOMPARE(::uname(&names), 0);
        if (sizeof(void*) == 8)
            QCOMPARE(System::current().architecture, QString::fromLatin1(names.machine));
    }

    /// On a kernel of 64 bits, programs of 32 are of another kind than the machine, and updated by their own.
    void theKindOfMachineIsTheProgramsAndNotTheKernels() {
        utsname names{};
        const int before = ::personality(PER_LINUX32);
        QVERIFY(before >= 0);
        QCOMPARE(::uname(&names), 0);
        const System system = System::current();
        ::personality(static_cast<unsigned long>(before));
        QCOMPARE(system.architecture, System::current().architecture);
#ifdef __x86_64__
        QCOMPARE(QString::fromLatin1(names.machine), QStringLiteral("i686"));
        QCOMPARE(system.architecture, QStringLiteral("x86_64"));
#endif
    }
};

QTEST_GUILESS_MAIN(SuitabilityTest)
#include "SuitabilityTest.moc"
