#pragma once

#include "Support/RawEnum.h"

namespace torvane {

/// How expensive a gas price is at a glance.
enum class GasLevel { low, normal, busy };

template <>
inline constexpr std::array rawValues<GasLevel>{
    std::pair{GasLevel::low, QLatin1StringView("low")},
    std::pair{GasLevel::normal, QLatin1StringView("normal")},
    std::pair{GasLevel::busy, QLatin1StringView("busy")},
};

/// Classifies a gas price in gwei: up to 8 is low, up to 30 normal, above that busy.
GasLevel gasLevel(double gwei);

/// The word that is shown: "Low", "Normal" or "Busy".
QLatin1StringView word(GasLevel level);

} // namespace torvane
