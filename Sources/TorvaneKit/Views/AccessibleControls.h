#pragma once

namespace torvane {

/// Makes the stepper known to Qt's accessibility as a spin box whose value can be set, and the picker as a combo box
/// with a name of its own. Does nothing after the first time.
void installControlAccessibility();

} // namespace torvane
