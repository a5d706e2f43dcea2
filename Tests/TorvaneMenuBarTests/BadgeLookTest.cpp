#include "Badge/BadgeLook.h"

#include "Support/SimulatedMarket.h"
#include "Support/TemporaryHome.h"

#include <QLocale>
#include <QTest>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

const QDateTime now = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);

Snapshot snapshot() {
    Snapshot result = SimulatedMarket::at(now);
    result.gas.baseFee = 8;
    result.gas.low = 12.34;
    result.gas.high = 99.5;
    result.price.eth = 3000;
    result.l2[2].costGwei = 0.0123;
    result.l2[2].costUsd = 0.004;
    result.l2[2].status = u"Elevated"_s;
    return result;
}

} // namespace

class BadgeLookTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_settings.reset();
        m_defaults.reset();
        m_home = std::make_unique<TemporaryHome>();
        m_defaults =
            std::make_unique<UserDefaults>(m_home->filePath(u"preferences.json"_s), m_home->filePath(u"cache"_s));
        m_settings = std::make_unique<AppSettings>(*m_defaults);
        QLocale::setDefault(QLocale::c());
    }

    void withoutASnapshotThereIsNoFigure() {
        const BadgeLook look = badgeLook({}, {}, *m_settings, now);
        QCOMPARE(look.picture.icon.chain, u"Ethereum"_s);
        QVERIFY(look.picture.figure.isEmpty() && !look.picture.icon.dotColor && look.picture.wantsFigure);
        QCOMPARE(look.detail, u"No figures yet"_s);
        QCOMPARE(look.title(), u"Ethereum: No figures yet"_s);
    }

    void ethereumsFigureStandsBareAndIsExplainedInWords() {
        QCOMPARE(look().picture.figure, u"12.3"_s);
        QCOMPARE(look().detail, u"12.3 gwei · Low"_s);
        QCOMPARE(look().title(), u"Ethereum: 12.3 gwei · Low"_s);
    }

    void theLevelIsTheBaseFees_data() {
        QTest::addColumn<double>("baseFee");
        QTest::addColumn<QString>("expected");
        QTest::newRow("up to 8") << 8.0 << u"12.3 gwei · Low"_s;
        QTest::newRow("up to 30") << 30.0 << u"12.3 gwei · Normal"_s;
        QTest::newRow("above") << 30.01 << u"12.3 gwei · Busy"_s;
    }

    void theLevelIsTheBaseFees() {
        QFETCH(double, baseFee);
        QFETCH(QString, expected);
        m_snapshot.gas.baseFee = baseFee;
        QCOMPARE(look().detail, expected);
    }

    void theUsersSourceAndUnitAreFollowed() {
        m_settings->badgeSource = BadgeSource::high;
        m_settings->denom = Denomination::usd;
        QCOMPARE(look().picture.figure, u"$6.27"_s);
        QCOMPARE(look().detail, u"$6.27 a transfer · Low"_s);
    }

    void aLayer2NetworkHasItsOwnFigureAndStatus() {
        m_settings->badgeChain = BadgeChain::l2(m_snapshot.l2[2].name);
        QCOMPARE(look().picture.icon.chain, m_snapshot.l2[2].name);
        QCOMPARE(look().picture.figure, u"0.012 gwei"_s);
        QCOMPARE(look().detail, u"0.012 gwei · Elevated"_s);
        m_settings->denom = Denomination::usd;
        QCOMPARE(look().picture.figure, u"<$0.01"_s);
        QCOMPARE(look().detail, u"<$0.01 · Elevated"_s);
    }

    void anUnknownNetworkHasADash() {
        m_settings->badgeChain = BadgeChain::l2(u"Atlantis"_s);
        QCOMPARE(look().picture.icon.chain, u"Atlantis"_s);
        QCOMPARE(look().picture.figure, u"—"_s);
        QCOMPARE(look().detail, u"— · Unavailable"_s);
    }

    void aFigureThatIsSwitchedOffStaysInTheToolTip() {
        m_settings->menuNumber = false;
        QVERIFY(look().picture.figure.isEmpty() && !look().picture.wantsFigure);
        QCOMPARE(look().detail, u"12.3 gwei · Low"_s);
    }

    void textsOfAnyLengthBecomeShortLines() {
        const QString chain = u"Up\nand "_s + QString(1'000'000, u'N');
        m_snapshot.l2[2].name = chain;
        m_snapshot.l2[2].status = QString(499, u'S') + u"😀"_s + QString(1'000'000, u'S');
        m_snapshot.l2[2].tag = QString(1'000'000, u'T');
        m_settings->badgeChain = BadgeChain::l2(chain);
        QCOMPARE(look().picture.icon.chain, chain); // It is what the network is known by.
        QCOMPARE(look().name(), u"Up and "_s + QString(493, u'N') + u'…');
        QCOMPARE(look().detail, u"0.012 gwei · "_s + QString(499, u'S') + u'…');
        QCOMPARE(look().title(), look().name() + u": "_s + look().detail);
        QCOMPARE(look().picture.tag.size(), 501);
    }

    void aFigureTooLongForThePanelIsStillInWords() {
        m_snapshot.gas.low = 1e300;
        QCOMPARE(look().picture.figure.size(), 301);
        QVERIFY(look().picture.besideMark().figure.isEmpty());
        QVERIFY(look().detail.startsWith(look().picture.figure + u" gwei"_s));
        m_snapshot.gas.low = 9e23;
        QCOMPARE(look().picture.figure.size(), 24);
        QCOMPARE(look().picture.besideMark(), look().picture);
    }

    void theUsersColoursAreFollowed() {
        QVERIFY(!look().picture.icon.colorIcon);
        m_settings->colorIcon = true;
        QVERIFY(look().picture.icon.colorIcon);
    }

    void dataOlderThanTenMinutesSayFromWhenTheyAre_data() {
        QTest::addColumn<qint64>("ageMs");
        QTest::addColumn<bool>("isOld");
        QTest::newRow("new") << qint64(0) << false;
        QTest::newRow("ten minutes") << qint64(600'000) << false;
        QTest::newRow("a little more") << qint64(600'001) << true;
        QTest::newRow("from the future") << qint64(-600'000) << false;
    }

    void dataOlderThanTenMinutesSayFromWhenTheyAre() {
        QFETCH(qint64, ageMs);
        QFETCH(bool, isOld);
        const QDateTime then = now.addMSecs(-ageMs);
        const QString clock = then.toLocalTime().time().toString(u"HH:mm"_s);
        const QString expected = isOld ? u"12.3 gwei · Low · as of "_s + clock : u"12.3 gwei · Low"_s;
        QCOMPARE(badgeLook(m_snapshot, then, *m_settings, now).detail, expected);
    }

    void theClockTimeIsWrittenTheUsersWay() {
        QCOMPARE(ageAt(endOfDay), u"as of 14:05"_s);
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(ageAt(endOfDay), u"as of 14:05"_s);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QCOMPARE(ageAt(endOfDay), u"as of 2:05 PM"_s);
    }

    void dataOfAnotherDaySayOfWhich() {
        const QDateTime midnight = endOfDay.addMSecs(1);
        QCOMPARE(ageAt(midnight), u"as of 2026-05-14 14:05"_s);
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(ageAt(midnight), u"as of 14.05.26 14:05"_s);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QCOMPARE(ageAt(midnight), u"as of 5/14/26 2:05 PM"_s);
        QCOMPARE(ageAt(afternoon.addYears(1)), u"as of 5/14/26 2:05 PM"_s);
    }

    void theAgeChangesAfterTenMinutesAndAtTheDaysEnd() {
        const QDateTime old = afternoon.addMSecs(600'001);
        QCOMPARE(nextAge(afternoon, afternoon), old);
        QCOMPARE(nextAge(afternoon, old), endOfDay.addMSecs(1));
        QCOMPARE(nextAge(afternoon, endOfDay), endOfDay.addMSecs(1));
        QCOMPARE(nextAge(afternoon, endOfDay.addMSecs(1)), std::nullopt);
        // Just before midnight they come to be old on another day already.
        QCOMPARE(nextAge(endOfDay, endOfDay.addMSecs(600'001)), std::nullopt);
    }

    void dataWithoutATimeClaimNone() {
        QCOMPARE(badgeLook(m_snapshot, {}, *m_settings, now).detail, u"12.3 gwei · Low"_s);
    }

    void cleanup() { m_snapshot = snapshot(); }

private:
    /// What data of the afternoon say of their age at this time.
    QString ageAt(const QDateTime& time) const {
        return badgeLook(m_snapshot, afternoon.toUTC(), *m_settings, time.toUTC()).detail.section(u" · "_s, -1);
    }

    /// In local time.
    const QDateTime afternoon{QDate(2026, 5, 14), QTime(14, 5)};
    const QDateTime endOfDay{QDate(2026, 5, 14), QTime(23, 59, 59, 999)};

    BadgeLook look() const { return badgeLook(m_snapshot, now, *m_settings, now); }

    Snapshot m_snapshot = snapshot();
    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppSettings> m_settings;
};

QTEST_MAIN(BadgeLookTest)
#include "BadgeLookTest.moc"
