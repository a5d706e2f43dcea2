#include "Comparison.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

constexpr const char* noFigure = "-";

/// What a table shows of one figure.
struct Line {
    std::string what;
    std::string ours;
    std::string yardstick;
    std::string ratio;
    std::string bar;
    std::string verdict;
};

std::string text(const char* form, double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, form, value);
    return buffer;
}

std::string quantity(double value, const char* unit) {
    const std::string number = text(std::abs(value) >= 1000 ? "%.0f" : "%.3g", value);
    return *unit ? number + ' ' + unit : number;
}

std::string word(bool isMet) {
    return isMet ? "met" : "MISSED";
}

/// Benchmarks may end in the middle of their work: what they had measured until then is kept.
void handOver(const std::string& line) {
    const char* path = std::getenv("TORVANE_FIGURES");
    if (!path)
        return;
    std::FILE* const file = std::fopen(path, "a");
    const bool isWritten = file && std::fputs(line.c_str(), file) >= 0;
    if (!file || std::fclose(file) != 0 || !isWritten) {
        std::fprintf(stderr, "The figures cannot be written to %s\n", path);
        std::exit(2);
    }
}

void report(const Line& line) {
    std::printf("%-50s %12s %12s %8s %9s  %s\n", line.what.c_str(), line.ours.c_str(), line.yardstick.c_str(),
                line.ratio.c_str(), line.bar.c_str(), line.verdict.c_str());
    std::fflush(stdout);
    handOver(line.what + '\t' + line.ours + '\t' + line.yardstick + '\t' + line.ratio + '\t' + line.bar + '\t' +
             line.verdict + '\n');
}

Line lineOf(const Comparison& figure, const std::string& verdict) {
    return {figure.what,
            quantity(figure.ours, figure.unit),
            quantity(figure.yardstick, figure.unit),
            text("%.3f", figure.ours / figure.yardstick),
            text(figure.side == Bar::atMost ? "<= %.3g" : ">= %.3g", figure.bar),
            verdict};
}

} // namespace

void Figures::begin(const std::string& title) {
    std::printf("\n%s\n%-50s %12s %12s %8s %9s\n", title.c_str(), "", "ours", "yardstick", "ratio", "bar");
    std::fflush(stdout);
    handOver(title + '\n');
}

bool Comparison::isMet() const {
    // What is no number meets no bar, and a yardstick of nothing measures nothing.
    const double ratio = ours / yardstick;
    return yardstick > 0 && (side == Bar::atMost ? ratio <= bar : ratio >= bar);
}

bool Comparison::report() const {
    ::report(lineOf(*this, word(isMet())));
    return isMet();
}

void Comparison::reportUncounted(const std::string& why) const {
    ::report(lineOf(*this, why));
}

bool Limit::report() const {
    ::report({what, quantity(ours, unit), noFigure, noFigure, "<= " + quantity(most, unit), word(isMet())});
    return isMet();
}

double Growth::exponent() const {
    double largest = -std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < amounts.size(); ++i) {
        const Amount& less = amounts[i - 1];
        const Amount& more = amounts[i];
        if (!(less.microseconds > 0 && more.microseconds > 0))
            return std::numeric_limits<double>::quiet_NaN(); // Nothing was measured: that meets no bar.
        largest =
            std::max(largest, std::log(more.microseconds / less.microseconds) / std::log(more.units / less.units));
    }
    return largest;
}

bool Growth::report() const {
    ::report({what, quantity(amounts.back().nanosecondsPerUnit(), "ns"),
              quantity(amounts.front().nanosecondsPerUnit(), "ns"), text("%.3f", exponent()), text("<= %.3g", bar),
              word(isMet())});
    return isMet();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}
