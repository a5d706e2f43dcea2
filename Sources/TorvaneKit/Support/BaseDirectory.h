#pragma once

#include <QString>

/// The user's directories by the XDG base directory specification: the environment's value if it is an absolute path,
/// the default below the home directory otherwise. Empty if the user has no home directory either.
namespace torvane::BaseDirectory {

QString config(); ///< $XDG_CONFIG_HOME, ~/.config
QString cache();  ///< $XDG_CACHE_HOME, ~/.cache
QString data();   ///< $XDG_DATA_HOME, ~/.local/share

/// $XDG_RUNTIME_DIR, which lives in memory and ends with the session. It has no default: without it, it is empty.
QString runtime();

} // namespace torvane::BaseDirectory
