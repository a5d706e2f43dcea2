#include "Design/DesignSystem.h"
#include "Model/AppSettings.h"
#include "Support/JSON.h"
#include "Support/SimulatedMarket.h"
#include "Support/Worker.h"
#include "Views/PreferencesView.h"
#include "Views/Sidebar.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <cstdio>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

QString fileName(const QString& folder, PreferencesView::Section section, const QString& appearance) {
    const QString panel = QString(rawValue(section)).toLower().remove(u' ');
    return u"%1/preferences-%2-%3.png"_s.arg(folder, appearance, panel);
}

/// All panels in the current appearance. False if one cannot be written.
bool save(const QString& folder, PreferencesView& view, const QString& appearance) {
    const auto items = view.findChildren<SidebarItem*>();
    for (const auto section : allCases<PreferencesView::Section>()) {
        items[static_cast<int>(section)]->click();
        QCoreApplication::processEvents();
        const QString path = fileName(folder, section, appearance);
        if (!view.grab().save(path)) {
            std::fprintf(stderr, "%s cannot be written\n", qPrintable(path));
            return false;
        }
    }
    return true;
}

} // namespace

/// Saves a picture of each panel of the preferences, light and dark, into a folder. Fonts and scale are the
/// environment's: FONTCONFIG_FILE, QT_SCALE_FACTOR.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle(u"fusion"_s);
    const QString folder = QCoreApplication::arguments().value(1, u"."_s);
    QDir().mkpath(folder);

    const QTemporaryDir home;
    UserDefaults defaults(home.filePath(u"preferences.json"_s), home.filePath(u"cache"_s));
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC);
    defaults.setData(u"cachedSnapshot"_s, JSON::encode(SimulatedMarket::at(time)));
    AppSettings settings(defaults);
    settings.alertEnabled = true;
    settings.disabledL2 = {u"zkSync Era"_s};
    SnapshotStore store(settings, defaults);
    UpdaterState updater;
    updater.canCheck = true;

    bool isSaved = true;
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        setCurrentAppearance(appearance);
        PreferencesView view(store, settings, updater);
        view.show();
        isSaved = save(folder, view, appearance == Appearance::dark ? u"dark"_s : u"light"_s) && isSaved;
    }
    worker().waitForDone();
    return isSaved ? 0 : 1;
}
