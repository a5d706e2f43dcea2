// Writes pictures of the updater's windows in all their states: UpdateGallery FOLDER. update-STATE-LOOK-SCALEx.png,
// LOOK being light or dark.

#include "Design/Theme.h"
#include "Gallery/Gallery.h"
#include "Support/UpdateScenes.h"
#include "UpdateWindow.h"

#include <QPixmap>
#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

/// At both scales.
bool save(QWidget& widget, const QDir& folder, const QString& subject) {
    bool ok = true;
    for (const int scale : {1, 2}) {
        QPixmap picture(widget.size() * scale);
        picture.setDevicePixelRatio(scale);
        widget.render(&picture);
        ok &= picture.save(folder.filePath(u"update-%1-%2x.png"_s.arg(subject).arg(scale)));
    }
    return ok;
}

bool saveScene(const QString& subject, const Updates::Scene& scene, const QDir& folder) {
    UpdateWindow window(pageOf(scene));
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.bringToFront();
    return QTest::qWaitForWindowActive(&window, 30'000) && save(window, folder, subject);
}

/// The ring that the keyboard brings.
bool saveFocus(const QString& look, const QDir& folder) {
    UpdateWindow window(pageOf(Updates::Found{UpdateScenes::offer()}));
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.bringToFront();
    if (!QTest::qWaitForWindowActive(&window, 30'000))
        return false;
    bool ok = true;
    for (const QString& stop : {u"link"_s, u"notes"_s}) {
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        ok &= save(window, folder, u"focus-%1-%2"_s.arg(stop, look));
    }
    return ok;
}

bool savePictures(Appearance appearance, const QDir& folder) {
    setCurrentAppearance(appearance);
    QApplication::setPalette(widgetPalette(appearance));
    const QString look = appearance == Appearance::dark ? u"dark"_s : u"light"_s;
    bool ok = true;
    for (const auto& [name, scene] : UpdateScenes::all())
        ok &= saveScene(name + u'-' + look, scene, folder);
    return saveFocus(look, folder) && ok;
}

bool writeAll(const QDir& folder) {
    const bool ok = savePictures(Appearance::light, folder);
    return savePictures(Appearance::dark, folder) && ok;
}

} // namespace

int main(int argc, char** argv) {
    return Gallery::run(argc, argv, "UpdateGallery", writeAll);
}
