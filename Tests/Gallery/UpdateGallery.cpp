#include "Design/Theme.h"
#include "Gallery/Gallery.h"
#include "Support/UpdateScenes.h"
#include "UpdateWindow.h"

#include <QImage>
#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

/// The open window at 1 and 2 pixels for a point; `state` and `caption` say what it shows.
bool save(QWidget& window, const QString& state, const QString& caption, const QDir& folder) {
    const QString look = currentAppearance() == Appearance::dark ? u"dark"_s : u"light"_s;
    bool ok = true;
    for (const int scale : {1, 2}) {
        QImage picture(window.size() * scale, QImage::Format_RGB32);
        picture.setDevicePixelRatio(scale);
        window.render(&picture);
        picture.setText(u"Description"_s, caption);
        ok &= picture.save(folder.filePath(u"update-%1-%2-%3x.png"_s.arg(state, look).arg(scale)));
    }
    return ok;
}

bool open(UpdateWindow& window) {
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.bringToFront();
    return QTest::qWaitForWindowActive(&window, 30'000);
}

bool saveScenes(const QDir& folder) {
    bool ok = true;
    for (const auto& [name, scene] : UpdateScenes::all()) {
        const UpdatePage page = pageOf(scene);
        UpdateWindow window(page);
        ok &= open(window) && save(window, name, page.headline.left(60), folder);
    }
    return ok;
}

/// The ring that the keyboard brings.
bool saveFocus(const QDir& folder) {
    UpdateWindow window(pageOf(Updates::Found{UpdateScenes::offer()}));
    bool ok = open(window);
    for (const QString& stop : {u"link"_s, u"notes"_s}) {
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        ok &= save(window, u"focus-"_s + stop, u"The keyboard is at the "_s + stop, folder);
    }
    return ok;
}

bool savePictures(Appearance appearance, const QDir& folder) {
    setCurrentAppearance(appearance);
    QApplication::setPalette(widgetPalette(appearance));
    const bool ok = saveScenes(folder);
    return saveFocus(folder) && ok;
}

bool writeAll(const QDir& folder) {
    const bool ok = savePictures(Appearance::light, folder);
    return savePictures(Appearance::dark, folder) && ok;
}

} // namespace

int main(int argc, char** argv) {
    return Gallery::run(argc, argv, "UpdateGallery", writeAll);
}
