#include "Badge/BadgeHost.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>
#include <string>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

void say(const QString& line) {
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

QString text(const QRect& place) {
    QString all;
    for (const int number : {place.x(), place.y(), place.width(), place.height()})
        all += u' ' + QString::fromStdString(std::to_string(number));
    return all;
}

constexpr QLatin1StringView surfaceNames[] = {"none"_L1,     "label"_L1,  "wide"_L1,
                                              "symbolic"_L1, "square"_L1, "window"_L1};

} // namespace

/// A program that is nothing but a badge: its arguments are the figures it shows, the next one at each "Refresh Now".
/// "Preferences…" switches them off and on. It says what it shows the badge on, and what is clicked.
int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"velisk"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parser.addOptions({{u"network"_s, u"The network"_s, u"network"_s, u"Ethereum"_s},
                       {u"colored"_s, u"In the network's colours"_s},
                       {u"dot"_s, u"With a dot in this colour"_s, u"dot"_s},
                       {u"mark-only"_s, u"Without a figure"_s},
                       {u"prefers"_s, u"What the desktop's user wants: dark or light"_s, u"prefers"_s}});
    parser.addPositionalArgument(u"figures"_s, u"What is shown, in turn"_s);
    parser.process(application);

    MenuBarBadgeIcon icon{
        parser.value(u"network"_s), MenuBarLabel::markSize, {}, MenuBarLabel::dotSize, parser.isSet(u"colored"_s)};
    if (parser.isSet(u"dot"_s))
        icon.dotColor = QColor(parser.value(u"dot"_s));
    BadgePicture picture{icon, {}, !parser.isSet(u"mark-only"_s), {}};
    BadgeHost badge(QDBusConnection::sessionBus());
    if (parser.isSet(u"prefers"_s))
        badge.setPreference(parser.value(u"prefers"_s) == "dark"_L1 ? Appearance::dark : Appearance::light);
    const QStringList figures = parser.positionalArguments();
    qsizetype next = 0;
    const auto showNext = [&] {
        const QString figure = figures.value(next);
        next = figures.isEmpty() ? 0 : (next + 1) % figures.size();
        picture.figure = picture.wantsFigure ? figure : QString();
        badge.show({picture, figure.isEmpty() ? u"No figures yet"_s : figure + u" gwei · Normal"_s});
    };
    QObject::connect(&badge, &BadgeHost::surfaceChanged, &badge,
                     [&] { say("surface "_L1 + surfaceNames[size_t(badge.kind())]); });
    QObject::connect(&badge, &BadgeHost::clicked, &badge, [](QRect place) { say("activated"_L1 + text(place)); });
    QObject::connect(&badge, &BadgeHost::commandChosen, &badge, [&](BadgeCommand command) {
        say("command "_L1 + QLatin1StringView(std::to_string(static_cast<int>(command))));
        if (command == BadgeCommand::refresh)
            showNext();
        else if (command == BadgeCommand::quit)
            QCoreApplication::quit();
        else if (command == BadgeCommand::preferences) {
            picture.wantsFigure = !picture.wantsFigure;
            showNext();
        }
    });
    say(u"surface none"_s);
    showNext();
    return QCoreApplication::exec();
}
