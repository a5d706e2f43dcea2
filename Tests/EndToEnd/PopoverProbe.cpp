#include "Design/Theme.h"
#include "Model/ApplicationId.h"
#include "Platform/StatusNotifierItem.h"
#include "Popover.h"

#include <QApplication>
#include <QCursor>
#include <QPainter>
#include <QTemporaryDir>

#include <cstdio>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

/// Something to look at; a key makes it grow.
class Content final : public QWidget {
public:
    QSize sizeHint() const override { return {344, m_height}; }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        QWidget::keyPressEvent(event);
        m_height += 100;
        updateGeometry();
    }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(Palette::ink);
        painter.setFont(Fonts::sans(13, QFont::DemiBold));
        painter.drawText(QPointF(16, 32), u"Ethereum"_s);
        painter.setPen(Palette::ink3);
        painter.setFont(Fonts::label());
        painter.drawText(QPointF(16, 50), u"Mainnet · block 21,000,000"_s);
    }

private:
    int m_height = 300;
};

QImage orange() {
    QImage image(22, 22, QImage::Format_ARGB32);
    image.fill(QColor(0xE0, 0x80, 0x30));
    return image;
}

} // namespace

/// A program that is nothing but a badge and a popover. It says how dark the desktop is whenever that changes, and what
/// a click upon the badge led to.
int main(int argc, char* argv[]) {
    QApplication::setStyle(u"fusion"_s);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(u"preferences.json"_s), folder.path());
    const AppSettings settings(defaults);
    ApplicationPalette palette;
    const ColorScheme desktop(QDBusConnection::sessionBus(), palette);
    const Theme theme(settings, desktop, palette);
    const auto say = [](const char* word) {
        std::puts(word);
        std::fflush(stdout);
    };
    const auto sayAppearance = [&] { say(currentAppearance() == Appearance::dark ? "dark" : "light"); };
    QObject::connect(&theme, &Theme::appearanceChanged, &application, sayAppearance);
    sayAppearance();

    Popover popover([] { return std::make_unique<Content>(); });
    StatusNotifierItem badge(QDBusConnection::sessionBus(), applicationId, u"ApplicationStatus"_s);
    QObject::connect(&badge, &StatusNotifierItem::activated, &popover, [&] {
        popover.toggle(QRect(QCursor::pos(), QSize(1, 1)));
        say(popover.isOpen() ? "clicked: open" : "clicked: closed");
    });
    NotifierLook look;
    look.title = u"Popover"_s;
    look.icons = {orange()};
    badge.show(look);
    return QApplication::exec();
}
