#pragma once

#include "Platform/X11Properties.h"

class QScreen;

/// Where the popover goes. All in device-independent pixels of the desktop.
namespace torvane::PopoverPlacement {

/// From the pixels of the X server, of which a screen that starts at the same place has `scale` times as many.
QRect fromServer(const QRect& rectangle, QPoint screenOrigin, double scale);

/// What the docks upon a screen leave of its available area.
QRect workArea(const QRect& screen, const QRect& available, const QList<X11::Dock>& docks);

/// A badge where only the pointer upon it is known: as large as panels' icons are.
QRect badgeAround(QPoint pointer);

/// The window's place for a badge: below it in the upper half of the area, else above; beside it where the badge's
/// panel stands left or right of the area. It stays inside the area, and is cut where it is larger.
QRect place(QSize wanted, const QRect& badge, const QRect& area);

/// The badge of which nobody knows where it lies: at the right end of the panel that narrows the screen to the area, at
/// the top or at the bottom.
QRect badgeInCorner(const QRect& screen, const QRect& area);

/// The screen of a badge, or the one that is nearest; the first one for a null rectangle.
const QScreen& screenOf(const QRect& badge);

/// The present work area of a screen.
QRect workArea(const QScreen& screen);

} // namespace torvane::PopoverPlacement
