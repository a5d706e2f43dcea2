#pragma once

#include "Views/MenuBarLabel.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace torvane {

/// What of the badge is drawn: the network's mark with its dot, and the figure such as "12.3".
struct BadgePicture {
    MenuBarBadgeIcon icon;
    QString tag;             ///< in the icon's place, should it not be drawn
    bool wantsFigure = true; ///< whether the user wants one, be it known yet or not
    QString figure;          ///< empty: the icon stands alone

    bool operator==(const BadgePicture&) const = default;
};

/// What the badge says, whatever it is shown on. The detail says the figure in words, with its unit: tooltips and
/// screen readers have it beside the network's name.
struct BadgeLook {
    BadgePicture picture;
    QString detail;

    bool operator==(const BadgeLook&) const = default;

    QString title() const; ///< all of it in one line
};

/// Data older than this say from when they are.
inline constexpr std::chrono::minutes badgeFreshness{10};

/// The badge of what is known under the user's settings, at this time. Without a snapshot there is no figure.
BadgeLook badgeLook(const std::optional<Snapshot>& snapshot, const std::optional<QDateTime>& lastUpdated,
                    const AppSettings& settings, const QDateTime& now);

} // namespace torvane
