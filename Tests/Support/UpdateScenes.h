#pragma once

#include "TorvaneUpdates/Windows.h"

#include <QList>
#include <QString>

#include <utility>

/// What an update's windows are to show, for tests and pictures.
namespace torvane::UpdateScenes {

inline QString notes() {
    return QStringLiteral(
        "The badge follows the panel when it changes from dark to light.\n\n"
        "• Layer 2 networks keep the order in which the relay names them.\n"
        "• A figure that has grown old is no longer shown beside fresh ones.\n"
        "• The popover opens at once on screens of 150 %.\n\n"
        "Known: on some desktops the first click after login opens the popover at the screen's edge. Click once "
        "more.\n\n"
        "<b>Markup</b> is shown as it stands, & so is everything else. Thanks to all who wrote to us.\n");
}

inline Updates::Offer offer() {
    return {
        .version = QStringLiteral("0.4.0"),
        .currentVersion = QStringLiteral("0.3.0"),
        .notes = notes(),
        .notesLink = QUrl(QStringLiteral("https://velisk.example/notes/0.4.0")),
        .length = 4'210'688,
    };
}

inline Updates::Offer criticalOffer() {
    Updates::Offer critical = offer();
    critical.isCritical = true;
    return critical;
}

inline Updates::Offer offerWithoutNotes() {
    Updates::Offer bare = offer();
    bare.notes.clear();
    bare.notesLink.clear();
    return bare;
}

inline Updates::Offer offerWithObstacle() {
    Updates::Offer other = offer();
    other.obstacle = QStringLiteral("This copy in /usr/bin belongs to the system: its package manager brings 0.4.0.");
    return other;
}

inline Updates::Offer endlessOffer() {
    Updates::Offer endless = offer();
    endless.version = QStringLiteral("0.4.0-") + QString(3000, u'x');
    endless.currentVersion = QString(3000, u'9');
    for (int i = 0; i < 10'000; ++i)
        endless.notes += QStringLiteral("Line %1 of many\n").arg(i);
    return endless;
}

inline QString cause() {
    return QStringLiteral("The download from https://relay.velisk.example/torvane/velisk-0.4.0-x86_64 does not carry a "
                          "signature of this program's maker, and was thrown away.");
}

/// Every kind of scene, by a name for it.
inline QList<std::pair<QString, Updates::Scene>> all() {
    using namespace Updates;
    return {
        {QStringLiteral("checking"), Checking{}},
        {QStringLiteral("found"), Found{offer()}},
        {QStringLiteral("found-critical"), Found{criticalOffer()}},
        {QStringLiteral("found-bare"), Found{offerWithoutNotes()}},
        {QStringLiteral("found-obstacle"), Found{offerWithObstacle()}},
        {QStringLiteral("found-endless"), Found{endlessOffer()}},
        {QStringLiteral("up-to-date"), UpToDate{QStringLiteral("0.3.0")}},
        {QStringLiteral("downloading"), Downloading{offer(), 1'310'000}},
        {QStringLiteral("verifying"), Verifying{offer()}},
        {QStringLiteral("ready"), ReadyToInstall{offer()}},
        {QStringLiteral("installing"), Installing{offer()}},
        {QStringLiteral("failed"), Failed{cause()}},
    };
}

} // namespace torvane::UpdateScenes
