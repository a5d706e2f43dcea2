#include "Badge/BadgeMenu.h"

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

MenuEntry entryOf(BadgeCommand command, const QString& label) {
    return {static_cast<int>(command), label};
}

constexpr int separatorId = 100;

} // namespace

QList<MenuEntry> badgeMenu() {
    return {entryOf(BadgeCommand::show, u"Show velisk"_s), entryOf(BadgeCommand::refresh, u"Refresh Now"_s),
            entryOf(BadgeCommand::preferences, u"Preferences…"_s), MenuEntry{separatorId, {}, true, true},
            entryOf(BadgeCommand::quit, u"Quit velisk"_s)};
}

std::optional<BadgeCommand> badgeCommand(int entry) {
    if (entry < static_cast<int>(BadgeCommand::show) || entry > static_cast<int>(BadgeCommand::quit))
        return std::nullopt;
    return static_cast<BadgeCommand>(entry);
}

} // namespace torvane
