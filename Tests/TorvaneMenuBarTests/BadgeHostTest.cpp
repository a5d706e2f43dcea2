#include "Badge/BadgeHost.h"

#include "Badge/BadgeDrawing.h"
#include "Badge/NotifierBadge.h"
#include "Support/StandInPanel.h"

#include <QDBusVariant>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(torvane::SurfaceKind)
Q_DECLARE_METATYPE(torvane::BadgeCommand)

namespace {

constexpr int limitMs = 30000;
constexpr std::array sizes{16, 22, 24, 32, 48, 64, 66};

/// What the lookup says of every process.
PanelProcess nextPanel;

PanelProcess lookUp(uint) {
    return nextPanel;
}

BadgeLook look(const QString& figure = u"12.3"_s, bool isColored = false) {
    const MenuBarBadgeIcon icon{u"Ethereum"_s, MenuBarLabel::markSize, QColor(0x5e, 0x72, 0x57), MenuBarLabel::dotSize,
                                isColored};
    return {{icon, {}, true, figure}, u"12.3 gwei · Low"_s};
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class BadgeHostTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerStatusNotifierTypes(); }

    void init() {
        m_runtime = std::make_unique<QTemporaryDir>();
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime->path()));
        m_bus = std::make_unique<PrivateBus>();
        m_panel = std::make_unique<StandInPanel>(*m_bus);
    }

    void cleanup() {
        m_host.reset();
        m_panel.reset();
        m_bus.reset();
    }

    void eachPanelHasItsSurface_data() {
        QTest::addColumn<QString>("process");
        QTest::addColumn<SurfaceKind>("expected");
        QTest::newRow("GNOME") << u"gnome-shell"_s << SurfaceKind::label;
        QTest::newRow("Ayatana") << u"ayatana-indicat"_s << SurfaceKind::label;
        QTest::newRow("MATE") << u"notification-ar"_s << SurfaceKind::wide;
        QTest::newRow("waybar") << u"waybar"_s << SurfaceKind::wide;
        QTest::newRow("xfce, which has no tray here") << u"xfce4-panel"_s << SurfaceKind::symbolic;
        QTest::newRow("Plasma") << u"kded5"_s << SurfaceKind::symbolic;
        QTest::newRow("LXQt") << u"lxqt-panel"_s << SurfaceKind::square;
        QTest::newRow("swaybar") << u"swaybar"_s << SurfaceKind::square;
        QTest::newRow("unknown") << QString() << SurfaceKind::square;
    }

    void eachPanelHasItsSurface() {
        QFETCH(QString, process);
        QFETCH(SurfaceKind, expected);
        start(process);
        QCOMPARE(m_host->kind(), expected);
        QCOMPARE(m_panel->property(u"Title"_s), u"Ethereum: 12.3 gwei · Low"_s);
        const auto toolTip = qdbus_cast<NotifierToolTip>(m_panel->property(u"ToolTip"_s));
        QCOMPARE(toolTip.title, u"Ethereum: 12.3 gwei · Low"_s); // Alone: some panels show no more of it.
        QCOMPARE(toolTip.text, QString());
        QCOMPARE(m_panel->properties().contains(u"XAyatanaLabel"_s), expected == SurfaceKind::label);
    }

    void aLabelHostHasATintedMarkAndTheFigureAsText() {
        start(u"gnome-shell"_s);
        QCOMPARE(m_panel->property(u"XAyatanaLabel"_s), u"12.3"_s);
        QCOMPARE(m_panel->property(u"XAyatanaLabelGuide"_s), u"00.0"_s);
        QVERIFY(pixmaps().isEmpty());
        const QString name = m_panel->property(u"IconName"_s).toString();
        QVERIFY(name.endsWith("-symbolic"_L1));
        QVERIFY(contentOf(iconFile(name + ".svg"_L1)).contains("ColorScheme-Text"));
        const QString before = name;
        m_host->show(look(u"12.4"_s));
        QCOMPARE(m_panel->property(u"IconName"_s), before); // The mark is the same.
        m_host->show(look(QString()));
        QCOMPARE(m_panel->property(u"XAyatanaLabel"_s), QString()); // There still, so that panels take the text away.
    }

    void aLabelHostHasAColouredMarkByItsName() {
        start(u"ayatana-indicat"_s, look(u"12.3"_s, true));
        const QString name = m_panel->property(u"IconName"_s).toString();
        QVERIFY(pixmaps().isEmpty());
        const QImage image(iconFile(name + ".png"_L1));
        QCOMPARE(image.size(), QSize(72, 72));
    }

    void aWideHostHasOneWidePicture() {
        start(u"waybar"_s);
        QCOMPARE(pixmaps().size(), 1);
        QCOMPARE(pixmaps()[0].height, 54);
        QVERIFY(pixmaps()[0].width > 2 * 54);
        QVERIFY(m_panel->property(u"IconName"_s).toString().isEmpty());
        m_host->show(look(QString()));
        QVERIFY(pixmaps()[0].width < 2 * 54);
    }

    void aSquareHostHasEachSizeSharp() {
        start(u"lxqt-panel"_s);
        QCOMPARE(pixmaps().size(), qsizetype(sizes.size()));
        for (qsizetype i = 0; i < pixmaps().size(); ++i)
            QCOMPARE(QSize(pixmaps()[i].width, pixmaps()[i].height), QSize(sizes[size_t(i)], sizes[size_t(i)]));
        QVERIFY(m_panel->property(u"IconName"_s).toString().isEmpty());
    }

    void aTintingHostHasANameAndNoPixmapsUnlessInColour() {
        start(u"kded5"_s);
        QVERIFY(m_panel->property(u"IconName"_s).toString().endsWith("-symbolic"_L1));
        QCOMPARE(m_panel->property(u"IconThemePath"_s), m_runtime->filePath(u"velisk/icons"_s));
        QVERIFY(pixmaps().isEmpty());
        m_host->show(look(u"12.3"_s, true));
        QVERIFY(m_panel->property(u"IconName"_s).toString().isEmpty());
        QCOMPARE(pixmaps().size(), qsizetype(sizes.size()));
    }

    void whereNoFileCanBeWrittenPixmapsServe_data() {
        QTest::addColumn<QString>("process");
        QTest::newRow("labels") << u"gnome-shell"_s;
        QTest::newRow("tints") << u"kded5"_s;
    }

    void whereNoFileCanBeWrittenPixmapsServe() {
        QFETCH(QString, process);
        qunsetenv("XDG_RUNTIME_DIR");
        start(process);
        QVERIFY(m_panel->property(u"IconName"_s).toString().isEmpty());
        QVERIFY(m_panel->property(u"IconThemePath"_s).toString().isEmpty());
        QCOMPARE(pixmaps().size(), qsizetype(sizes.size()));
    }

    void theBadgeFollowsTheDesktopsPreference() {
        start(u"lxqt-panel"_s);
        const auto plated = pixmaps();
        m_panel->signalsSoFar();
        m_host->setPreference(Appearance::dark);
        QCOMPARE(m_panel->signalsSoFar(), QStringList{u"NewIcon"_s});
        const auto dark = pixmaps();
        m_host->setPreference(Appearance::light);
        const auto light = pixmaps();
        QVERIFY(plated != dark && dark != light && light != plated);
        m_host->setPreference(std::nullopt);
        QCOMPARE(pixmaps(), plated);
    }

    void onlyWhatChangedIsAnnounced() {
        start(u"lxqt-panel"_s);
        m_host->show(look());
        QCOMPARE(m_panel->signalsSoFar(), QStringList());
        BadgeLook next = look();
        next.detail = u"12.34 gwei · Low"_s;
        m_host->show(next);
        QCOMPARE(m_panel->signalsSoFar(), (QStringList{u"NewTitle"_s, u"NewToolTip"_s}));
        next.picture.figure = u"12.4"_s;
        m_host->show(next);
        QCOMPARE(m_panel->signalsSoFar(), QStringList{u"NewIcon"_s});
        next.picture.figure = u"0.00012"_s;
        m_host->show(next);
        m_panel->signalsSoFar();
        next.picture.figure = u"0.00013"_s; // Neither fits a square: the mark stands alone, as before.
        m_host->show(next);
        QCOMPARE(m_panel->signalsSoFar(), QStringList());
    }

    void aPanelThatComesLateHasTheBadge() {
        createHost();
        QCOMPARE(m_host->surface(), nullptr);
        nextPanel = {u"lxqt-panel"_s, {}};
        QVERIFY(m_panel->appear());
        QTRY_COMPARE_WITH_TIMEOUT(m_panel->services().size(), 1, limitMs);
        QCOMPARE(m_host->kind(), SurfaceKind::square);
    }

    void aPanelThatComesBackHasTheBadgeAgain() {
        start(u"waybar"_s);
        QVERIFY(m_panel->disappear());
        QTRY_COMPARE_WITH_TIMEOUT(m_host->kind(), SurfaceKind::none, limitMs);
        QVERIFY(m_panel->appear());
        QTRY_COMPARE_WITH_TIMEOUT(m_panel->services().size(), 2, limitMs);
        QCOMPARE(m_host->kind(), SurfaceKind::wide);
        QCOMPARE(pixmaps().size(), 1);
    }

    void onePanelMayBeExchangedForAnother() {
        start(u"waybar"_s);
        StandInPanel other(*m_bus);
        nextPanel = {u"gnome-shell"_s, {}};
        QVERIFY(m_panel->disappear() && other.appear());
        QTRY_COMPARE_WITH_TIMEOUT(other.services().size(), 1, limitMs);
        QCOMPARE(m_host->kind(), SurfaceKind::label);
        QCOMPARE(other.property(u"XAyatanaLabel"_s), u"12.3"_s);
        QCOMPARE(m_panel->services().size(), 1);
        nextPanel = {u"lxqt-panel"_s, {}};
        QVERIFY(other.disappear() && m_panel->appear());
        QTRY_COMPARE_WITH_TIMEOUT(m_panel->services().size(), 2, limitMs);
        QVERIFY(!m_panel->property(u"XAyatanaLabel"_s).isValid());
    }

    void panelsThatComeAndGoQuicklyLeaveTheLastOnesSurface() {
        createHost();
        for (int i = 0; i < 20; ++i) {
            nextPanel = {i % 2 ? u"waybar"_s : u"lxqt-panel"_s, {}};
            QVERIFY(m_panel->appear());
            QVERIFY(m_panel->disappear());
        }
        nextPanel = {u"gnome-shell"_s, {}};
        QVERIFY(m_panel->appear());
        QTRY_COMPARE_WITH_TIMEOUT(m_host->kind(), SurfaceKind::label, limitMs);
        QTRY_VERIFY_WITH_TIMEOUT(m_panel->property(u"XAyatanaLabel"_s) == u"12.3"_s, limitMs);
    }

    void theMenuShowsItsEntriesInOrder() {
        start(u"lxqt-panel"_s);
        QStringList labels;
        for (const MenuLayout& entry : menu())
            labels.append(entry.properties.value(u"label"_s).toString());
        QCOMPARE(labels,
                 (QStringList{u"Show velisk"_s, u"Refresh Now"_s, u"Preferences…"_s, QString(), u"Quit velisk"_s}));
    }

    void eachMenuEntryIsACommand_data() {
        QTest::addColumn<QString>("label");
        QTest::addColumn<BadgeCommand>("expected");
        QTest::newRow("show") << u"Show velisk"_s << BadgeCommand::show;
        QTest::newRow("refresh") << u"Refresh Now"_s << BadgeCommand::refresh;
        QTest::newRow("preferences") << u"Preferences…"_s << BadgeCommand::preferences;
        QTest::newRow("quit") << u"Quit velisk"_s << BadgeCommand::quit;
    }

    void eachMenuEntryIsACommand() {
        QFETCH(QString, label);
        QFETCH(BadgeCommand, expected);
        start(u"lxqt-panel"_s);
        QList<BadgeCommand> commands;
        connect(m_host.get(), &BadgeHost::commandChosen, this,
                [&commands](BadgeCommand command) { commands.append(command); });
        for (const MenuLayout& entry : menu()) {
            if (entry.properties.value(u"label"_s) == label)
                m_panel->call(u"com.canonical.dbusmenu"_s, u"Event"_s,
                              {entry.id, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), 0U});
        }
        QTRY_COMPARE_WITH_TIMEOUT(commands, QList{expected}, limitMs);
    }

    void aClicksPlaceIsTakenFromPanelsThatKnowIt_data() {
        QTest::addColumn<QString>("process");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("Plasma") << u"kded5"_s << QRect(3, 4, 1, 1);
        QTest::newRow("swaybar") << u"swaybar"_s << QRect(3, 4, 1, 1);
        QTest::newRow("waybar") << u"waybar"_s << QRect();
        QTest::newRow("unknown") << QString() << QRect();
    }

    void aClicksPlaceIsTakenFromPanelsThatKnowIt() {
        QFETCH(QString, process);
        QFETCH(QRect, expected);
        start(process);
        QSignalSpy clicks(m_host.get(), &BadgeHost::clicked);
        m_panel->call(u"org.kde.StatusNotifierItem"_s, u"Activate"_s, {3, 4});
        QTRY_COMPARE_WITH_TIMEOUT(clicks, QList<QVariantList>{{expected}}, limitMs);
    }

    void whereThePanelShowsNoMenuARightClickIsAClick() {
        start(u"swaybar"_s);
        QSignalSpy clicks(m_host.get(), &BadgeHost::clicked);
        m_panel->call(u"org.kde.StatusNotifierItem"_s, u"ContextMenu"_s, {3, 4});
        QTRY_COMPARE_WITH_TIMEOUT(clicks, QList<QVariantList>{{QRect(3, 4, 1, 1)}}, limitMs);
    }

    void withoutABusThereIsNoBadgeAndNoHarm() {
        BadgeHost host(QDBusConnection(u"no such connection"_s), &lookUp);
        host.show(look());
        host.setPreference(Appearance::dark);
        QCOMPARE(host.surface(), nullptr);
    }

    void aBusThatGoesAwayTakesNothingWithIt() {
        start(u"waybar"_s);
        m_panel.reset();
        m_bus.reset();
        m_host->show(look(u"99"_s));
        QTRY_VERIFY_WITH_TIMEOUT(!m_connection.isConnected(), limitMs);
    }

private:
    void createHost(const BadgeLook& first = look()) {
        m_connection = m_bus->connect();
        m_host = std::make_unique<BadgeHost>(m_connection, &lookUp);
        m_host->show(first);
    }

    void start(const QString& process, const BadgeLook& first = look()) {
        nextPanel = {process, {}};
        QVERIFY(m_panel->appear());
        createHost(first);
        QTRY_COMPARE_WITH_TIMEOUT(m_panel->services().size(), 1, limitMs);
        m_panel->signalsSoFar();
    }

    QString iconFile(const QString& name) { return m_panel->property(u"IconThemePath"_s).toString() + u'/' + name; }

    QList<NotifierPixmap> pixmaps() { return qdbus_cast<QList<NotifierPixmap>>(m_panel->property(u"IconPixmap"_s)); }

    QList<MenuLayout> menu() {
        const QDBusMessage reply =
            m_panel->call(u"com.canonical.dbusmenu"_s, u"GetLayout"_s, {0, 1, QStringList{u"label"_s}});
        QList<MenuLayout> entries;
        for (const QVariant& child : qdbus_cast<MenuLayout>(reply.arguments().value(1)).children)
            entries.append(qdbus_cast<MenuLayout>(child));
        return entries;
    }

    std::unique_ptr<QTemporaryDir> m_runtime;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<StandInPanel> m_panel;
    QDBusConnection m_connection{QString()};
    std::unique_ptr<BadgeHost> m_host;
};

QTEST_MAIN(BadgeHostTest)
#include "BadgeHostTest.moc"
