#include "Badge/StatusItemBadge.h"

#include <QGuiApplication>

#include <cstdio>

using namespace torvane;
using namespace Qt::StringLiterals;

/// A program that is nothing but a badge: its arguments are the figures it shows, the next one at each "Refresh Now".
int main(int argc, char* argv[]) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const QStringList figures = QCoreApplication::arguments().mid(1);
    qsizetype next = 0;
    StatusItemBadge badge(QDBusConnection::sessionBus());
    const auto showNext = [&] {
        const QString figure = figures.value(next);
        next = figures.isEmpty() ? 0 : (next + 1) % figures.size();
        badge.show({figure, u"Ethereum gas"_s, figure.isEmpty() ? u"No figure yet"_s : figure + " gwei"_L1});
    };
    QObject::connect(&badge, &StatusItemBadge::refreshRequested, &badge, showNext);
    QObject::connect(&badge, &StatusItemBadge::activated, &badge, [](QPoint position) {
        std::printf("activated %d %d\n", position.x(), position.y());
        std::fflush(stdout);
    });
    QObject::connect(&badge, &StatusItemBadge::quitRequested, &application, &QCoreApplication::quit);
    showNext();
    return QCoreApplication::exec();
}
