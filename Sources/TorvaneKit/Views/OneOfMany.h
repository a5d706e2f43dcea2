#pragma once

#include <QList>
#include <Qt>

#include <optional>

class QAbstractButton;
class QKeyEvent;

/// What controls that offer several choices, one of which is selected, have in common.
namespace torvane::OneOfMany {

/// Which choice a key press goes to from the selected one: the neighbour with the arrow keys, the first and the last
/// with Home and End; never beyond them. None for another key, and none with Control, Alt or Super.
std::optional<int> afterKey(const QKeyEvent& key, int selected, int count, Qt::LayoutDirection direction);

/// The index of the checked button; -1 without one.
int checked(const QList<QAbstractButton*>& buttons);

/// Makes the keyboard stop once: at the checked button, or at any while there is none.
void keepOneTabStop(const QList<QAbstractButton*>& buttons);

} // namespace torvane::OneOfMany
