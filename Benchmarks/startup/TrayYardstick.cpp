// The yardstick of starts and clicks: Qt's own tray icon, and a window with a line of text that is made when the icon
// is clicked and goes with the next click. Its two timers find nothing to do.
#include <QApplication>
#include <QPainter>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QWidget>

#include <memory>

namespace {

class Popover final : public QWidget {
public:
    Popover()
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint) {
        setGeometry(100, 50, 344, 700);
    }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).drawText(20, 40, QStringLiteral("Ethereum 0.812 gwei")); }
};

QIcon icon() {
    QPixmap pixmap(54, 54);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::blue);
    painter.drawEllipse(3, 3, 48, 48);
    return QIcon(pixmap);
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QTimer everyBlock;
    QTimer everyMinute;
    everyBlock.start(12000);
    everyMinute.start(60000);
    std::unique_ptr<Popover> popover;
    QSystemTrayIcon tray(icon());
    tray.setToolTip(QStringLiteral("0.812 gwei"));
    QObject::connect(&tray, &QSystemTrayIcon::activated, &application, [&popover] {
        popover = popover ? nullptr : std::make_unique<Popover>();
        if (popover)
            popover->show();
    });
    tray.show();
    return QApplication::exec();
}
