#pragma once

#include <QPainterPath>
#include <QString>

/// What stands on the tile of a network without artwork.
namespace torvane::InitialLetter {

/// The first letter as a reader sees it, in upper case: with the marks that combine with it, and all of a character
/// outside the basic plane (extended grapheme clusters of Unicode's annex 29). Blanks and other characters that are not
/// seen do not count before it. Empty when there is none.
QString of(const QString& name);

/// The letter's outline, 13 units to the em, in the middle of a box of 24 by 24 units; a wide one is made to fit.
/// Empty when the font has no outline for it. Main thread only.
QPainterPath outline(const QString& letter);

} // namespace torvane::InitialLetter
