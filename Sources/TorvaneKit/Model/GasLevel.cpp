#include "Model/GasLevel.h"

namespace torvane {

GasLevel gasLevel(double gwei) {
    if (gwei <= 8)
        return GasLevel::low;
    if (gwei <= 30)
        return GasLevel::normal;
    return GasLevel::busy; // NaN counts as busy on purpose: both comparisons fail.
}

QLatin1StringView word(GasLevel level) {
    switch (level) {
    case GasLevel::low:
        return QLatin1StringView("Low");
    case GasLevel::normal:
        return QLatin1StringView("Normal");
    case GasLevel::busy:
        return QLatin1StringView("Busy");
    }
    Q_UNREACHABLE();
}

} // namespace torvane
