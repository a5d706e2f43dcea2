#pragma once

#include <QStringView>

#include <compare>

namespace torvane::Updates {

/// Which of two versions is newer. A version is read as numbers, words and single separators (blanks and punctuation);
/// any other character belongs to a word. A dash cuts the rest off. Zeros at the end count for nothing (1.0 is 1.0.0),
/// and a word makes a version older than the same without it: 1.0b1 comes before 1.0. All pairs of versions have an
/// order, and all orders agree.
std::strong_ordering compareVersions(QStringView a, QStringView b);

} // namespace torvane::Updates
