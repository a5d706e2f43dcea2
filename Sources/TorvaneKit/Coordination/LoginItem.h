#pragma once

/// Whether the desktop starts this program when its user logs in.
namespace torvane::LoginItem {

/// Registers the program, or takes it off again. Returns at once; a failure is silent, and changes nothing else. What
/// the desktop really has is never read back.
void apply(bool launchAtLogin);

} // namespace torvane::LoginItem
