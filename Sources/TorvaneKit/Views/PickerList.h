#pragma once

class QComboBox;

namespace torvane::PickerList {

/// Gives a drop-down list the windows' look: below its control, in the palette's colours.
void install(QComboBox& comboBox);

} // namespace torvane::PickerList
