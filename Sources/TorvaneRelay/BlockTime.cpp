#include "BlockTime.h"

namespace torvane {

std::optional<double> secondsPerBlock(const BlockTime& latest, const BlockTime& earlier) {
    if (earlier.number >= latest.number || earlier.seconds >= latest.seconds)
        return std::nullopt;
    return static_cast<double>(latest.seconds - earlier.seconds) / static_cast<double>(latest.number - earlier.number);
}

} // namespace torvane
