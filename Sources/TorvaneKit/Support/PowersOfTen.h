#pragma once

#include <array>

namespace torvane {

/// The powers of ten that are exact doubles, as far as numbers of fifteen digits need them. A number of so few digits
/// is the quotient of two exact doubles, rounded once, to the nearest (Clinger 1990).
inline constexpr std::array exactPowersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

} // namespace torvane
