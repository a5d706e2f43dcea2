#pragma once

namespace torvane {

/// One pool of memory for all threads instead of one for each: ours are few and rarely busy at one time, and each pool
/// keeps what was freed in it. To be called before there is a second thread.
void shareMemoryAmongThreads();

/// Large blocks come from the system one by one and go back to it when they are freed. By itself malloc() takes the
/// largest block that was ever freed for the new limit: one endless answer would keep its size for good.
void keepLargeBlocksApart();

/// Gives memory that was freed back to the system, which malloc() by itself does only at the pool's end. For after work
/// that is not done again soon.
void returnFreedMemory();

} // namespace torvane
