// What the same work costs the CPU with more networks, with longer histories, and with larger documents. The sizes take
// turns in each round, each repeated until its time can be told well; medians count. A bar is on the exponent between
// neighbouring sizes: about linear is allowed where each network or point is looked at, and where histories are only
// passed on, their length must not matter. GrowthBenchmark [ROUNDS]
// exits with 1 where a bar is missed, with 2 where a work brings nothing
#include "Comparison.h"
#include "ThreadCPU.h"
#include "growth/Market.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

using namespace torvane;

namespace {

constexpr double leastMicroseconds = 3000; // Of one measurement.
constexpr double linear = 1.15;            // Ten times the work may take 14 times as long: caches end somewhere.
constexpr double none = 0.15;              // Ten times the work may take 1.4 times as long.

struct Work {
    const char* name;
    void (Market::*run)();
    double bar;
    double barOfPoints;
};

constexpr Work works[] = {
    {"decode", &Market::decode, linear, linear},
    {"merge", &Market::merge, linear, none},
    {"publish", &Market::publish, linear, none},
    {"badge drawn anew", &Market::paintBadge, linear, none},
    {"popover opened", &Market::openPopover, linear, linear},
    {"publish to the open popover", &Market::publishToPopover, linear, linear},
    {"popover repainted", &Market::repaintPopover, linear, none},
};

/// What grows, and the markets from the smallest to the largest.
struct Scale {
    const char* name;
    const char* unit;
    double Work::*bar;
    QList<DocumentShape> shapes;
    double (*units)(const DocumentShape& shape, const Market& market);
};

QList<Scale> scales() {
    const auto networks = [](const DocumentShape& shape, const Market&) { return double(shape.networks); };
    const auto points = [](const DocumentShape& shape, const Market&) { return double(shape.points); };
    const auto bytes = [](const DocumentShape&, const Market& market) { return double(market.bytes()); };
    return {
        {"10 to 1,000 networks",
         "network",
         &Work::bar,
         {{.networks = 10}, {.networks = 100}, {.networks = 1000}},
         networks},
        {"24 to 10,000 points",
         "point",
         &Work::barOfPoints,
         {{.points = 24}, {.points = 288}, {.points = 2000}, {.points = 10000}},
         points},
        {"20 KB to 16 MB",
         "byte",
         &Work::bar,
         {{.networks = 9, .points = 80},
          {.networks = 30, .points = 310},
          {.networks = 100, .points = 1000},
          {.networks = 280, .points = 2850}},
         bytes},
    };
}

using Markets = std::vector<std::unique_ptr<Market>>;

double microseconds(const Work& work, Market& market) {
    const double start = threadMicroseconds();
    double elapsed = 0;
    int calls = 0;
    while (elapsed < leastMicroseconds) {
        (market.*work.run)();
        ++calls;
        elapsed = threadMicroseconds() - start;
    }
    return elapsed / calls;
}

std::vector<double> medians(const Work& work, const Markets& markets, int rounds) {
    std::vector<std::vector<double>> times(markets.size());
    for (int round = 0; round <= rounds; ++round) {
        for (std::size_t i = 0; i < markets.size(); ++i) {
            const double each = microseconds(work, *markets[i]);
            if (round > 0) // What is kept from one time to the next is there by then.
                times[i].push_back(each);
        }
    }
    std::vector<double> result;
    for (const std::vector<double>& each : times)
        result.push_back(median(each));
    return result;
}

bool measure(const Scale& scale, const Work& work, const Markets& markets, int rounds) {
    const std::vector<double> times = medians(work, markets, rounds);
    Growth growth{std::string(work.name) + ", " + scale.name, {}, work.*scale.bar};
    for (std::size_t i = 0; i < markets.size(); ++i)
        growth.amounts.push_back({scale.units(scale.shapes[qsizetype(i)], *markets[i]), times[i]});
    const bool isMet = growth.report();
    for (const Growth::Amount& amount : growth.amounts)
        std::printf("  %12.0f %-10s %12.4g us %12.4g ns each\n", amount.units, scale.unit, amount.microseconds,
                    amount.nanosecondsPerUnit());
    return isMet;
}

bool measure(const Scale& scale, int rounds) {
    Markets markets;
    for (const DocumentShape& shape : scale.shapes)
        markets.push_back(std::make_unique<Market>(shape));
    Figures::begin(std::string("As work grows: time for each ") + scale.unit +
                   ", ours of the most, yardstick of the least; the ratio is the exponent");
    bool areMet = true;
    for (const Work& work : works)
        areMet &= measure(scale, work, markets, rounds);
    return areMet;
}

/// The platform without a screen says at each popover that it can not do all that it might with windows.
void tellAllButThat(QtMsgType, const QMessageLogContext&, const QString& message) {
    if (!message.startsWith(QStringLiteral("This plugin does not support")))
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(tellAllButThat);
    const QApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 9;
    bool areMet = true;
    for (const Scale& scale : scales())
        areMet &= measure(scale, rounds);
    return areMet ? 0 : 1;
}
