#pragma once

#include <QStringList>

namespace torvane {

/// The path data of all icons of the sets that npm has installed, as published.
QStringList iconPaths();

/// Whether SVG and we read the text alike. We do not where the flags of an arc stand close together (`a1 1 0 01.5.5`),
/// where several groups follow a Q, and where an S or a T follows a line that follows a curve. The text is an icon's.
bool isReadAlike(const QString& path);

} // namespace torvane
