#pragma once

namespace torvane {

/// Whether this process runs in a Flatpak or Snap sandbox, where the desktop is reached through its portals alone.
bool isSandboxed();

} // namespace torvane
