#pragma once

#include <chrono>
#include <cstdint>

/// A time as all processes of a machine tell it, in nanoseconds (CLOCK_MONOTONIC).
using Nanoseconds = std::int64_t;

inline Nanoseconds now() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}
