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

    /// The same with the mark alone where the figure is too long to stand beside it: there is no room for it in any
    /// panel, and no price that anybody pays has so many digits.
    BadgePicture besideMark() const;

    bool operator==(const BadgePicture&) const = default;
};

/// What the badge says, whatever it is shown on. The detail says the figure in words, with its unit: tooltips and
/// screen readers have it beside the network's name. Both are lines that a screen has room for, whatever the relay
/// sent.
struct BadgeLook {
    BadgePicture picture;
    QString detail;

    bool operator==(const BadgeLook&) const = default;

    QString name() const;  ///< the network's
    QString title() const; ///< all of it in one line
};

/// Data older than this say from when they are, and those of another day from which.
inline constexpr std::chrono::minutes badgeFreshness{10};

/// The badge of what is known under the user's settings, at this time. Without a snapshot there is no figure.
BadgeLook badgeLook(const std::optional<Snapshot>& snapshot, const std::optional<QDateTime>& lastUpdated,
                    const AppSettings& settings, const QDateTime& now);

/// When data of this time come to say something else of their age; none where they never do.
std::optional<QDateTime> nextAge(const QDateTime& lastUpdated, const QDateTime& now);

} // namespace torvane
