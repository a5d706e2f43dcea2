#pragma once

#include <string>
#include <vector>

/// A figure of a benchmark, beside what it may be. report() prints its line, hands the same line over to whoever
/// started the benchmark (scripts/bench makes one table of all), and gives whether the bar is met.
///
/// The line goes to the end of the file that TORVANE_FIGURES names: what, ours, yardstick, ratio, bar and verdict
/// ("met" or "MISSED", or why the figure does not count), each ready to be shown, with tabs between them. A line of one
/// part is the title of those that follow.
namespace Figures {

/// Begins a table. The title says what is measured and how.
void begin(const std::string& title);

} // namespace Figures

/// On which side of its bar a ratio has to be.
enum class Bar { atMost, atLeast };

/// Ours beside a yardstick, both measured in one run, and the ratio that we allow.
struct Comparison {
    std::string what;
    const char* unit;
    double ours;
    double yardstick;
    double bar; ///< in yardsticks
    Bar side = Bar::atMost;

    bool isMet() const;
    bool report() const;

    /// For a figure that cannot be judged here: the table says why.
    void reportUncounted(const std::string& why) const;
};

/// A figure that has no yardstick but its bound.
struct Limit {
    std::string what;
    const char* unit;
    double ours;
    double most;

    bool isMet() const { return ours <= most; }
    bool report() const;
};

/// What the same costs for more and more work: times for each unit of it, and the largest exponent between neighbouring
/// amounts (1: ten times the work takes ten times as long; 0: the amount does not matter).
struct Growth {
    struct Amount {
        double units;
        double microseconds;

        double nanosecondsPerUnit() const { return microseconds * 1000 / units; }
    };

    std::string what;
    std::vector<Amount> amounts; ///< two at least, the smallest first
    double bar;                  ///< the largest exponent allowed

    double exponent() const;
    bool isMet() const { return exponent() <= bar; }

    /// The table has the largest amount as ours and the smallest as the yardstick.
    bool report() const;
};

/// The middle of at least one value; the upper of the two where there are two.
double median(std::vector<double> values);
