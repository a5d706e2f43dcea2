#pragma once

namespace torvane {

/// From the first call on, the kit's own controls are read as what they are, where Qt cannot know it: the stepper as a
/// spin box with its value, the sidebar as a list of tabs. Cheap to call again.
void readAsRoles();

} // namespace torvane
