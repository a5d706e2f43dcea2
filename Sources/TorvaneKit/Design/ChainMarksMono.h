#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

/// The networks' emblems in one colour.
namespace torvane::ChainMarksMono {

/// By display name, matched exactly: SVG path data in a box of 24 by 24 units. The paths of a name do not overlap, so
/// that they may be filled with a translucent colour, and by either fill rule.
const QHash<QString, QStringList>& byName();

} // namespace torvane::ChainMarksMono
