// Writes pictures of the preferences in all their states: PreferencesGallery FOLDER. preferences-STATE-LOOK-SCALEx.png,
// LOOK being light or dark.

#include "Design/Theme.h"
#include "Gallery/Gallery.h"
#include "TorvaneKitTests/Views/PreferencesFixture.h"
#include "Views/ChainPicker.h"

#include <QAbstractItemView>

using namespace torvane;
using namespace Qt::StringLiterals;
using Section = PreferencesView::Section;

namespace {

bool save(QWidget& widget, const QDir& folder, const QString& subject) {
    const QString name = u"%1-%2x.png"_s.arg(subject).arg(widget.devicePixelRatio());
    return widget.grab().save(folder.filePath(name));
}

bool savePanels(PreferencesFixture& user, const QDir& folder, const QString& look) {
    bool ok = true;
    for (const Section section : allCases<Section>()) {
        user.go(section);
        const QString panel = QString(rawValue(section)).toLower().replace(u' ', u'-');
        ok &= save(*user.view, folder, u"preferences-%1-%2"_s.arg(panel, look));
    }
    return ok;
}

/// The panel with the picker: its open list, and the ring that the keyboard brings.
bool savePicker(PreferencesFixture& user, const QDir& folder, const QString& look) {
    user.go(Section::menuBar);
    auto* picker = user.control<ChainPicker>(u"Chain"_s);
    picker->showPopup();
    bool ok = save(*picker->view()->window(), folder, u"preferences-list-%1"_s.arg(look));
    picker->hidePopup();
    QTest::keyClick(user.view->focusWidget(), Qt::Key_Tab);
    ok &= save(*user.view, folder, u"preferences-focus-%1"_s.arg(look));
    QTest::keyClick(picker, Qt::Key_Tab);
    return save(*user.view, folder, u"preferences-focus-switch-%1"_s.arg(look)) && ok;
}

bool savePictures(Appearance appearance, const QDir& folder) {
    setCurrentAppearance(appearance);
    QApplication::setPalette(widgetPalette(appearance));
    const QString look = appearance == Appearance::dark ? u"dark"_s : u"light"_s;
    PreferencesFixture user;
    user.settings->alertEnabled = true;
    user.settings->disabledL2 = {u"zkSync Era"_s};
    user.updater.canCheck = true;
    user.store->snapshot = PreferencesFixture::snapshot();
    user.open();
    const bool ok = savePanels(user, folder, look);
    return savePicker(user, folder, look) && ok;
}

bool writeAll(const QDir& folder) {
    const bool ok = savePictures(Appearance::light, folder);
    return savePictures(Appearance::dark, folder) && ok;
}

} // namespace

int main(int argc, char** argv) {
    return Gallery::run(argc, argv, "PreferencesGallery", writeAll);
}
