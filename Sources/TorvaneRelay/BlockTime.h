#pragma once

#include <QtGlobal>

#include <optional>

namespace torvane {

/// When a block was made.
struct BlockTime {
    quint64 number;
    quint64 seconds; ///< since 1970
};

/// How far back a network's block time is measured: nodes tell time in whole seconds.
inline constexpr quint64 blocksBetween = 1000;

/// The mean between two blocks; none where the later one is not later.
std::optional<double> secondsPerBlock(const BlockTime& latest, const BlockTime& earlier);

} // namespace torvane
