#include "Design/Theme.h"
#include "Support/UpdateScenes.h"
#include "UpdateWindow.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTest>

#include <cstdio>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

bool save(QWidget& widget, int scale, const QString& path) {
    QPixmap picture(widget.size() * scale);
    picture.setDevicePixelRatio(scale);
    widget.render(&picture);
    if (picture.save(path))
        return true;
    std::fprintf(stderr, "UpdateGallery: cannot write %s\n", qUtf8Printable(path));
    return false;
}

bool saveScene(const QString& name, const Updates::Scene& scene, const QDir& folder) {
    UpdateWindow window(pageOf(scene));
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.bringToFront();
    if (!QTest::qWaitForWindowActive(&window, 30'000))
        return false;
    bool ok = true;
    for (const int scale : {1, 2})
        ok &= save(window, scale, folder.filePath(u"update-%1@%2x.png"_s.arg(name).arg(scale)));
    return ok;
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
        ok &= save(window, 2, folder.filePath(u"update-%1-focus-%2.png"_s.arg(look, stop)));
    }
    return ok;
}

bool saveAll(Appearance appearance, const QDir& folder) {
    setCurrentAppearance(appearance);
    QApplication::setPalette(widgetPalette(appearance));
    const QString look = appearance == Appearance::dark ? u"dark"_s : u"light"_s;
    bool ok = saveFocus(look, folder);
    for (const auto& [name, scene] : UpdateScenes::all())
        ok &= saveScene(look + u'-' + name, scene, folder);
    return ok;
}

} // namespace

/// Fonts are the environment's: FONTCONFIG_FILE.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setStyle(u"fusion"_s);
    const QApplication application(argc, argv);
    if (argc != 2 || !QDir().mkpath(QString::fromLocal8Bit(argv[1]))) {
        std::fputs("Use: UpdateGallery FOLDER\n", stderr);
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const bool ok = saveAll(Appearance::light, folder);
    return saveAll(Appearance::dark, folder) && ok ? 0 : 1;
}
