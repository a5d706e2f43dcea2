#include "Support/PopoverScene.h"
#include "Views/PopoverView.h"

#include <QApplication>
#include <QClipboard>

#include <cstdio>

using namespace torvane;

/// The popover's content in a window, with figures that stay as they are. It says which action was chosen, and what was
/// copied.
int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    PopoverScene scene;
    scene.settings.badgeChain = BadgeChain::l2(QStringLiteral("Arbitrum"));
    PopoverView view(scene.store, scene.settings);
    view.setWindowTitle(QStringLiteral("velisk"));
    const auto say = [](const char* word) {
        std::puts(word);
        std::fflush(stdout);
    };
    QObject::connect(&view, &PopoverView::refreshRequested, &application, [say] { say("refresh"); });
    QObject::connect(&view, &PopoverView::preferencesRequested, &application, [say] { say("preferences"); });
    QObject::connect(&view, &PopoverView::quitRequested, &application, [say] { say("quit"); });
    const QClipboard* clipboard = QGuiApplication::clipboard();
    QObject::connect(clipboard, &QClipboard::dataChanged, &application,
                     [say, clipboard] { say(qUtf8Printable(QStringLiteral("copied: ") + clipboard->text())); });
    view.show();
    return QApplication::exec();
}
