#pragma once

namespace torvane {

/// One pool of memory for all threads instead of one for each: ours are few and rarely busy at one time, and each pool
/// keeps what was freed in it. To be called before there is a second thread.
void shareMemoryAmongThreads();

/// Gives memory that was freed back to the system, which malloc() by itself does only at the pool's end. For after work
/// that is not done again soon.
void returnFreedMemory();

} // namespace torvane
