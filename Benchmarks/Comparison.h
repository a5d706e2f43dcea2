#pragma once

#include <algorithm>
#include <cstdio>
#include <vector>

/// One line of a benchmark's table: ours beside a yardstick, both measured in one run, and the ratio that we allow.
struct Comparison {
    const char* what;
    const char* unit;
    double ours;
    double yardstick;
    double bar; // Most that ours may be, in yardsticks.

    bool isMet() const { return ours <= bar * yardstick; }

    static void printHead() { std::printf("%-44s %12s %12s %8s %8s\n", "what", "ours", "yardstick", "ratio", "bar"); }

    void print() const {
        std::printf("%-44s %9.4g %-3s %8.4g %-3s %7.3f %8.3f  %s\n", what, ours, unit, yardstick, unit,
                    ours / yardstick, bar, isMet() ? "met" : "MISSED");
    }
};

/// The middle of at least one value; the upper of the two where there are two.
inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}
