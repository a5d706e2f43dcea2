#pragma once

#include <QIcon>

namespace torvane {

/// The icon of the program's windows. Drawn, not looked up: a program that is not installed has none in the icon
/// themes.
QIcon programIcon();

} // namespace torvane
