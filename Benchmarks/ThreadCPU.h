#pragma once

#include <ctime>

/// CPU microseconds of this thread. Unlike time that passes, they are no longer because another program is busy.
inline double threadMicroseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}
