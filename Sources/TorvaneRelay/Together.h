#pragma once

#include "Support/Async.h"

#include <vector>

namespace torvane {

/// Runs tasks side by side and ends when all have ended. Throws what the first of those that threw did.
inline Task<> whenAll(std::vector<Task<>> tasks) {
    if (tasks.empty())
        co_return;
    Task<> last = std::move(tasks.back());
    tasks.pop_back();
    Task<> others = whenAll(std::move(tasks));
    Task<> both = whenBoth(std::move(others), std::move(last));
    co_await both;
}

} // namespace torvane
