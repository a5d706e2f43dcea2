#pragma once

#include <QAccessible>

class QWidget;

namespace torvane {

/// Has a new widget that Qt knows nothing of read with this role and name.
void readAs(QWidget& widget, QAccessible::Role role, const QString& name);

/// From the first call on, the kit's own controls are read as what they are: the stepper as a spin box with its value,
/// the picker by its name, a line of the sidebar as a tab. Cheap to call again.
void readControls();

} // namespace torvane
