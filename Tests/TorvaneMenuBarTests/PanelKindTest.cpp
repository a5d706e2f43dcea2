#include "Badge/PanelKind.h"

#include <QCoreApplication>
#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(torvane::PanelKind)
Q_DECLARE_METATYPE(torvane::SurfaceKind)
Q_DECLARE_METATYPE(torvane::PanelSurroundings)

class PanelKindTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPanelIsKnownByItsProcess_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<PanelKind>("expected");
        const auto row = [](const char* name, const QString& commandLine, PanelKind expected) {
            QTest::newRow(name) << QString::fromLatin1(name) << commandLine << expected;
        };
        row("gnome-shell", u"/usr/bin/gnome-shell"_s, PanelKind::labelled);
        row("ayatana-indicat", u"/usr/libexec/ayatana-indicator-application-service"_s, PanelKind::labelled);
        row("indicator-appli", u"/usr/libexec/indicator-application-service"_s, PanelKind::labelled);
        row("notification-ar", u"/usr/lib/mate-panel/notification-area-applet"_s, PanelKind::wide);
        row("mate-panel", u"mate-panel"_s, PanelKind::wide);
        row("waybar", u"waybar -c wb.json"_s, PanelKind::wide);
        row("panel-2-systray", u"/usr/lib/xfce4/panel/wrapper-2.0 /usr/lib/xfce4/panel/plugins/libsystray.so 2"_s,
            PanelKind::xfce);
        row("xfce4-panel", u"xfce4-panel"_s, PanelKind::xfce);
        row("kded5", u"/usr/bin/kded5"_s, PanelKind::plasma);
        row("kded6", u"/usr/bin/kded6"_s, PanelKind::plasma);
        row("plasmashell", u"/usr/bin/plasmashell"_s, PanelKind::plasma);
        row("swaybar", u"swaybar -b bar-0"_s, PanelKind::swaybar);
        row("lxqt-panel", u"lxqt-panel"_s, PanelKind::other);
        row("a stranger", u"/opt/gnome-shell/waybar"_s, PanelKind::other);
        QTest::newRow("nothing known") << QString() << QString() << PanelKind::other;
    }

    void aPanelIsKnownByItsProcess() {
        QFETCH(QString, name);
        QFETCH(QString, commandLine);
        QFETCH(PanelKind, expected);
        QCOMPARE(panelKind({name, commandLine}), expected);
    }

    void aProcessIsReadFromTheSystem() {
        const PanelProcess own = panelProcess(uint(QCoreApplication::applicationPid()));
        QCOMPARE(own.name, u"PanelKindTest"_s);
        QVERIFY(own.commandLine.contains("PanelKindTest"_L1));
        const PanelProcess nobody = panelProcess(0);
        QVERIFY(nobody.name.isEmpty() && nobody.commandLine.isEmpty());
    }

    void eachPanelHasItsSurface_data() {
        QTest::addColumn<PanelSurroundings>("around");
        QTest::addColumn<SurfaceKind>("expected");
        const auto row = [](const char* name, const PanelSurroundings& around, SurfaceKind expected) {
            QTest::newRow(name) << around << expected;
        };
        row("labels", {PanelKind::labelled}, SurfaceKind::label);
        row("wide", {PanelKind::wide}, SurfaceKind::wide);
        row("wide beside a tray", {PanelKind::wide, true}, SurfaceKind::wide);
        row("xfce with a figure", {PanelKind::xfce, true}, SurfaceKind::trayWindow);
        row("xfce without one", {PanelKind::xfce, true, false}, SurfaceKind::symbolic);
        row("xfce without a tray", {PanelKind::xfce, false}, SurfaceKind::symbolic);
        row("xfce whose tray may yet come", {PanelKind::xfce, false, true, true, false}, SurfaceKind::none);
        row("xfce without a figure waits for no tray", {PanelKind::xfce, false, false, true, false},
            SurfaceKind::symbolic);
        row("Plasma", {PanelKind::plasma, true}, SurfaceKind::symbolic);
        row("Plasma's service alone", {PanelKind::plasma, false, true, false}, SurfaceKind::symbolic);
        row("Plasma's service beside a tray", {PanelKind::plasma, true, true, false}, SurfaceKind::trayWindow);
        row("swaybar", {PanelKind::swaybar}, SurfaceKind::square);
        row("any other", {PanelKind::other, true}, SurfaceKind::square);
        row("a tray alone", {std::nullopt, true}, SurfaceKind::trayWindow);
        row("a tray alone without a figure", {std::nullopt, true, false}, SurfaceKind::trayWindow);
        row("a tray whose panel may yet come", {std::nullopt, true, true, true, false}, SurfaceKind::none);
        row("nothing", {std::nullopt, false}, SurfaceKind::none);
    }

    void eachPanelHasItsSurface() {
        QFETCH(PanelSurroundings, around);
        QFETCH(SurfaceKind, expected);
        QCOMPARE(surfaceKind(around), expected);
    }
};

QTEST_GUILESS_MAIN(PanelKindTest)
#include "PanelKindTest.moc"
