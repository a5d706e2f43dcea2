#include "Model/AppSettings.h"

#include "Model/Snapshot.h"
#include "Support/TemporaryHome.h"
#include "Support/TestFiles.h"
#include "Support/Worker.h"

#include <QTest>

#include <limits>

using namespace torvane;

class AppSettingsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<TemporaryHome>();
        QVERIFY(m_directory->isValid());
    }

    void anEmptyStoreGivesTheDefaults() {
        UserDefaults defaults(path(), m_directory->path());
        const AppSettings settings(defaults);
        QCOMPARE(settings.denom.value(), Denomination::gwei);
        QCOMPARE(settings.liveCadence.value(), LiveGasCadence::perBlock);
        QCOMPARE(settings.theme.value(), AppTheme::auto_);
        QCOMPARE(settings.menuNumber.value(), true);
        QCOMPARE(settings.badgeSource.value(), BadgeSource::low);
        QCOMPARE(settings.badgeChain.value(), BadgeChain::ethereum());
        QCOMPARE(settings.menuDot.value(), true);
        QCOMPARE(settings.colorIcon.value(), false);
        QCOMPARE(settings.launchAtLogin.value(), false);
        QCOMPARE(settings.alertEnabled.value(), false);
        QCOMPARE(settings.alert.value(), 10);
        QCOMPARE(settings.sound.value(), false);
        QVERIFY(settings.disabledL2->isEmpty());
    }

    void nothingIsWrittenAtCreation() {
        UserDefaults defaults(path(), m_directory->path());
        const AppSettings settings(defaults);
        worker().waitForDone();
        QVERIFY(!QFile::exists(path()));
    }

    void storedTextSelectsTheCase_data() {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("denom");
        QTest::addColumn<QString>("cadence");
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QString>("source");
        const auto row = [](const char* name, const char* document, const char* denom, const char* cadence,
                            const char* theme, const char* source) {
            QTest::newRow(name) << QByteArray(document) << QString::fromLatin1(denom) << QString::fromLatin1(cadence)
                                << QString::fromLatin1(theme) << QString::fromLatin1(source);
        };
        row("dollars", R"({"denom":"USD"})", "USD", "Per block", "Auto", "Low");
        row("dollars in lower case", R"({"denom":"usd"})", "gwei", "Per block", "Auto", "Low");
        row("gwei in capitals", R"({"denom":"GWEI"})", "gwei", "Per block", "Auto", "Low");
        row("fifteen seconds", R"({"liveGasCadence":"15s"})", "gwei", "15s", "Auto", "Low");
        row("fifteen with a capital S", R"({"liveGasCadence":"15S"})", "gwei", "Per block", "Auto", "Low");
        row("thirty seconds", R"({"liveGasCadence":"30s"})", "gwei", "30s", "Auto", "Low");
        row("sixty seconds", R"({"liveGasCadence":"60s"})", "gwei", "60s", "Auto", "Low");
        row("per block in another letter case", R"({"liveGasCadence":"Per Block"})", "gwei", "Per block", "Auto",
            "Low");
        row("the cadence's property name is no key", R"({"liveCadence":"60s"})", "gwei", "Per block", "Auto", "Low");
        row("dark", R"({"theme":"Dark"})", "gwei", "Per block", "Dark", "Low");
        row("light with a blank", R"({"theme":"Light "})", "gwei", "Per block", "Auto", "Low");
        row("base fee", R"({"badgeSource":"Base fee"})", "gwei", "Per block", "Auto", "Base fee");
        row("average", R"({"badgeSource":"Average"})", "gwei", "Per block", "Auto", "Average");
        row("high", R"({"badgeSource":"High"})", "gwei", "Per block", "Auto", "High");
        row("the source's case name", R"({"badgeSource":"baseFee"})", "gwei", "Per block", "Auto", "Low");
        row("empty texts", R"({"denom":"","liveGasCadence":"","theme":"","badgeSource":""})", "gwei", "Per block",
            "Auto", "Low");
        row("wrong types", R"({"denom":1,"liveGasCadence":["15s"],"theme":true,"badgeSource":null})", "gwei",
            "Per block", "Auto", "Low");
    }

    void storedTextSelectsTheCase() {
        QFETCH(QByteArray, document);
        QFETCH(QString, denom);
        QFETCH(QString, cadence);
        QFETCH(QString, theme);
        QFETCH(QString, source);
        store(document);
        UserDefaults defaults(path(), m_directory->path());
        const AppSettings settings(defaults);
        QCOMPARE(QString(rawValue(settings.denom.value())), denom);
        QCOMPARE(QString(rawValue(settings.liveCadence.value())), cadence);
        QCOMPARE(QString(rawValue(settings.theme.value())), theme);
        QCOMPARE(QString(rawValue(settings.badgeSource.value())), source);
    }

    void aStoredChainIsEthereumOrANetworkByItsName_data() {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<bool>("isEthereum");
        QTest::addColumn<QString>("title");
        QTest::newRow("missing") << QByteArray("{}") << true << QStringLiteral("Ethereum");
        QTest::newRow("empty") << QByteArray(R"({"badgeChain":""})") << true << QStringLiteral("Ethereum");
        QTest::newRow("ethereum") << QByteArray(R"({"badgeChain":"ethereum"})") << true << QStringLiteral("Ethereum");
        QTest::newRow("title") << QByteArray(R"({"badgeChain":"Ethereum"})") << false << QStringLiteral("Ethereum");
        QTest::newRow("network") << QByteArray(R"({"badgeChain":"Base"})") << false << QStringLiteral("Base");
        QTest::newRow("unknown") << QByteArray(R"({"badgeChain":" no such "})") << false << QStringLiteral(" no such ");
        QTest::newRow("wrong type") << QByteArray(R"({"badgeChain":7})") << true << QStringLiteral("Ethereum");
    }

    void aStoredChainIsEthereumOrANetworkByItsName() {
        QFETCH(QByteArray, document);
        QFETCH(bool, isEthereum);
        QFETCH(QString, title);
        store(document);
        UserDefaults defaults(path(), m_directory->path());
        const AppSettings settings(defaults);
        QCOMPARE(settings.badgeChain->isEthereum(), isEthereum);
        QCOMPARE(settings.badgeChain->title(), title);
        QCOMPARE(settings.badgeChain->storageValue(), isEthereum ? QStringLiteral("ethereum") : title);
    }

    void chainsAreEqualWhenTheirNamesAre() {
        const BadgeChain base = BadgeChain::l2(QStringLiteral("Base"));
        QCOMPARE(base, BadgeChain::l2(QStringLiteral("Base")));
        QCOMPARE(qHash(base), qHash(BadgeChain::l2(QStringLiteral("Base"))));
        QVERIFY(base != BadgeChain::l2(QStringLiteral("base")));
        QVERIFY(base != BadgeChain::ethereum());
        QVERIFY(BadgeChain::l2(QStringLiteral("ethereum")) != BadgeChain::ethereum());
        QVERIFY(BadgeChain::l2(QString()) != BadgeChain::ethereum());
        const QSet<BadgeChain> set{base, BadgeChain::ethereum(), BadgeChain::l2(QStringLiteral("Base"))};
        QCOMPARE(set.size(), 2);
    }

    void aThresholdIsAnyIntegerAndNothingElse_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<qint64>("alert");
        QTest::newRow("integer") << QByteArray("25") << qint64(25);
        QTest::newRow("beyond the range on offer") << QByteArray("1000000") << qint64(1'000'000);
        QTest::newRow("negative") << QByteArray("-3") << qint64(-3);
        QTest::newRow("largest") << QByteArray("9223372036854775807") << std::numeric_limits<qint64>::max();
        QTest::newRow("too large") << QByteArray("9223372036854775808") << qint64(10);
        QTest::newRow("text") << QByteArray("\"5\"") << qint64(10);
        QTest::newRow("fraction") << QByteArray("5.5") << qint64(10);
        QTest::newRow("true") << QByteArray("true") << qint64(10);
        QTest::newRow("null") << QByteArray("null") << qint64(10);
    }

    void aThresholdIsAnyIntegerAndNothingElse() {
        QFETCH(QByteArray, value);
        QFETCH(qint64, alert);
        store("{\"alert\":" + value + '}');
        UserDefaults defaults(path(), m_directory->path());
        QCOMPARE(AppSettings(defaults).alert.value(), alert);
    }

    void aSwitchIsABooleanAndNothingElse() {
        store(
            R"({"menuNumber":0,"menuDot":"false","colorIcon":1,"launchAtLogin":"true","alertEnabled":[true],"sound":{}})");
        UserDefaults defaults(path(), m_directory->path());
        const AppSettings settings(defaults);
        QVERIFY(settings.menuNumber && settings.menuDot);
        QVERIFY(!settings.colorIcon && !settings.launchAtLogin && !settings.alertEnabled && !settings.sound);
    }

    void disabledNetworksAreAListOfTextsAndNothingElse_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QSet<QString>>("disabled");
        const QSet<QString> none;
        QTest::newRow("duplicates collapse") << QByteArray(R"(["Base","Linea","Base"])")
                                             << QSet<QString>{QStringLiteral("Base"), QStringLiteral("Linea")};
        QTest::newRow("empty") << QByteArray("[]") << none;
        QTest::newRow("a number among them") << QByteArray(R"(["Base",1])") << none;
        QTest::newRow("null among them") << QByteArray(R"(["Base",null])") << none;
        QTest::newRow("text") << QByteArray(R"("Base")") << none;
        QTest::newRow("object") << QByteArray(R"({"Base":true})") << none;
    }

    void disabledNetworksAreAListOfTextsAndNothingElse() {
        QFETCH(QByteArray, value);
        QFETCH(QSet<QString>, disabled);
        store("{\"disabledL2\":" + value + '}');
        UserDefaults defaults(path(), m_directory->path());
        QCOMPARE(AppSettings(defaults).disabledL2.value(), disabled);
    }

    void aWrongValueStaysStoredUntilTheSettingIsAssigned() {
        store(R"({"denom":"usd","alert":"5"})");
        UserDefaults defaults(path(), m_directory->path());
        AppSettings settings(defaults);
        settings.alert = 10;
        worker().waitForDone();
        UserDefaults reopened(path(), m_directory->path());
        QCOMPARE(reopened.string(QStringLiteral("denom")), QStringLiteral("usd"));
        QCOMPARE(reopened.integer(QStringLiteral("alert")), 10);
    }

    void aNetworkNeverSeenBeforeIsEnabled() {
        UserDefaults defaults(path(), m_directory->path());
        QVERIFY(AppSettings(defaults).isEnabled(QStringLiteral("Brand new")));
    }

    void togglingTwiceRestoresTheSetAndWritesBothTimes() {
        UserDefaults defaults(path(), m_directory->path());
        AppSettings settings(defaults);
        settings.disabledL2 = {QStringLiteral("Linea")};
        QStringList announced;
        settings.disabledL2.observe(this, [&](const QSet<QString>& disabled) {
            QStringList names = disabled.values();
            names.sort();
            announced.append(names.join(QLatin1Char('+')));
        });
        settings.toggle(QStringLiteral("Base"));
        QVERIFY(!settings.isEnabled(QStringLiteral("Base")));
        QCOMPARE(defaults.stringList(QStringLiteral("disabledL2")),
                 (QStringList{QStringLiteral("Base"), QStringLiteral("Linea")}));
        settings.toggle(QStringLiteral("Base"));
        QVERIFY(settings.isEnabled(QStringLiteral("Base")));
        QCOMPARE(defaults.stringList(QStringLiteral("disabledL2")), QStringList{QStringLiteral("Linea")});
        QCOMPARE(announced, (QStringList{QStringLiteral("Base+Linea"), QStringLiteral("Linea")}));
    }

    void anEmptySetIsStoredAsAnEmptyList() {
        UserDefaults defaults(path(), m_directory->path());
        AppSettings settings(defaults);
        settings.toggle(QStringLiteral("Base"));
        settings.toggle(QStringLiteral("Base"));
        QCOMPARE(defaults.stringList(QStringLiteral("disabledL2")), QStringList());
    }

    void allValuesSurviveARestart() {
        {
            UserDefaults defaults(path(), m_directory->path());
            AppSettings settings(defaults);
            settings.denom = Denomination::usd;
            settings.liveCadence = LiveGasCadence::thirty;
            settings.theme = AppTheme::dark;
            settings.menuNumber = false;
            settings.badgeSource = BadgeSource::baseFee;
            settings.badgeChain = BadgeChain::l2(QStringLiteral("zkSync Era"));
            settings.menuDot = false;
            settings.colorIcon = true;
            settings.launchAtLogin = true;
            settings.alertEnabled = true;
            settings.alert = -1;
            settings.sound = true;
            settings.disabledL2 = {QStringLiteral("Base"), QStringLiteral("Ünichain \"2\"")};
        }
        worker().waitForDone();
        UserDefaults defaults(path(), m_directory->path());
        const AppSettings settings(defaults);
        QCOMPARE(settings.denom.value(), Denomination::usd);
        QCOMPARE(settings.liveCadence.value(), LiveGasCadence::thirty);
        QCOMPARE(settings.theme.value(), AppTheme::dark);
        QVERIFY(!settings.menuNumber && !settings.menuDot);
        QCOMPARE(settings.badgeSource.value(), BadgeSource::baseFee);
        QCOMPARE(settings.badgeChain.value(), BadgeChain::l2(QStringLiteral("zkSync Era")));
        QVERIFY(settings.colorIcon && settings.launchAtLogin && settings.alertEnabled && settings.sound);
        QCOMPARE(settings.alert.value(), -1);
        QCOMPARE(settings.disabledL2.value(),
                 (QSet<QString>{QStringLiteral("Base"), QStringLiteral("Ünichain \"2\"")}));
    }

    void everySettingIsStoredUnderItsKey() {
        UserDefaults defaults(path(), m_directory->path());
        AppSettings settings(defaults);
        settings.denom = settings.denom.value();
        settings.liveCadence = settings.liveCadence.value();
        settings.theme = settings.theme.value();
        settings.badgeSource = settings.badgeSource.value();
        settings.badgeChain = settings.badgeChain.value();
        QCOMPARE(defaults.string(QStringLiteral("denom")), QStringLiteral("gwei"));
        QCOMPARE(defaults.string(QStringLiteral("liveGasCadence")), QStringLiteral("Per block"));
        QCOMPARE(defaults.string(QStringLiteral("theme")), QStringLiteral("Auto"));
        QCOMPARE(defaults.string(QStringLiteral("badgeSource")), QStringLiteral("Low"));
        QCOMPARE(defaults.string(QStringLiteral("badgeChain")), QStringLiteral("ethereum"));
        using Switch = std::pair<Setting<bool>*, const char*>;
        for (const auto& [setting, key] :
             {Switch{&settings.menuNumber, "menuNumber"}, Switch{&settings.menuDot, "menuDot"},
              Switch{&settings.colorIcon, "colorIcon"}, Switch{&settings.launchAtLogin, "launchAtLogin"},
              Switch{&settings.alertEnabled, "alertEnabled"}, Switch{&settings.sound, "sound"}}) {
            const bool toggled = !setting->value();
            *setting = toggled;
            QCOMPARE(defaults.boolean(QString::fromLatin1(key)), toggled);
        }
        settings.alert = 11;
        QCOMPARE(defaults.integer(QStringLiteral("alert")), 11);
    }

    void observersAreToldBeforeTheChangeIsInEffectOrStored() {
        UserDefaults defaults(path(), m_directory->path());
        AppSettings settings(defaults);
        int told = 0;
        connect(&settings, &ObservableObject::objectWillChange, this, [&] {
            ++told;
            QCOMPARE(settings.denom.value(), Denomination::gwei);
            QVERIFY(!defaults.string(QStringLiteral("denom")));
        });
        settings.denom.observe(this, [&](Denomination announced) {
            ++told;
            QCOMPARE(announced, Denomination::usd);
            QCOMPARE(settings.denom.value(), Denomination::gwei);
            QVERIFY(!defaults.string(QStringLiteral("denom")));
        });
        settings.denom = Denomination::usd;
        QCOMPARE(told, 2);
        QCOMPARE(defaults.string(QStringLiteral("denom")), QStringLiteral("USD"));
    }

    void casesComeInTheOrderInWhichTheyAreOffered() {
        QVERIFY((allCases<Denomination>() == std::array{Denomination::gwei, Denomination::usd}));
        QVERIFY((allCases<AppTheme>() == std::array{AppTheme::auto_, AppTheme::light, AppTheme::dark}));
        QVERIFY((allCases<LiveGasCadence>() == std::array{LiveGasCadence::perBlock, LiveGasCadence::fifteen,
                                                          LiveGasCadence::thirty, LiveGasCadence::sixty}));
        QVERIFY((allCases<BadgeSource>() ==
                 std::array{BadgeSource::baseFee, BadgeSource::low, BadgeSource::average, BadgeSource::high}));
    }

    void aCadenceHasItsIntervalInSeconds() {
        QCOMPARE(fixedInterval(LiveGasCadence::perBlock), std::nullopt);
        QCOMPARE(fixedInterval(LiveGasCadence::fifteen), 15.0);
        QCOMPARE(fixedInterval(LiveGasCadence::thirty), 30.0);
        QCOMPARE(fixedInterval(LiveGasCadence::sixty), 60.0);
    }

    void aSourceSelectsItsFigure() {
        GasData gas;
        gas.baseFee = 0.25;
        gas.low = 0.5;
        gas.avg = 1.5;
        gas.high = 3;
        QCOMPARE(value(BadgeSource::baseFee, gas), 0.25);
        QCOMPARE(value(BadgeSource::low, gas), 0.5);
        QCOMPARE(value(BadgeSource::average, gas), 1.5);
        QCOMPARE(value(BadgeSource::high, gas), 3.0);
    }

private:
    QString path() const { return m_directory->filePath(QStringLiteral("preferences.json")); }

    void store(const QByteArray& text) const { TestFiles::put(path(), text); }

    std::unique_ptr<TemporaryHome> m_directory;
};

QTEST_GUILESS_MAIN(AppSettingsTest)
#include "AppSettingsTest.moc"
