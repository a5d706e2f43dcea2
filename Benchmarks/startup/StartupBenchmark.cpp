// The whole program beside plain Qt programs, as a desktop sees it: from its start to the registration of its badge,
// from a click on the badge to the popover's first frame, and its memory after ten seconds. Ours has a usual document
// in its cache. Both run in turns, in an X server and on a bus of their own; the first turn is not counted.
// StartupBenchmark [ROUNDS [SECONDS]]
// exits with 1 where a bar is missed, with 2 where nothing could be measured
#include "Comparison.h"
#include "startup/Launch.h"
#include "startup/Memory.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace {

constexpr int memoryRounds = 3;

void fillCache(const Desktop& desktop) {
    Program document({SNAPSHOT_DOCUMENT}, desktop.environment());
    std::ofstream(desktop.cache() / "cachedSnapshot") << document.rest();
    if (!document.succeeds())
        giveUp("There is no document for the cache");
}

struct Launches {
    LaunchTimes ours;
    LaunchTimes yardstick;
};

Launches measureLaunches(Desktop& desktop, int rounds) {
    FrameWatch watch(desktop.display().c_str());
    Launches measured;
    for (int round = 0; round <= rounds; ++round) {
        if (round == 1)
            measured = {}; // What the first starts read from disk lies in memory by now.
        measureLaunch({VELISK_DEMO}, desktop, watch, measured.ours);
        measureLaunch({TRAY_YARDSTICK}, desktop, watch, measured.yardstick);
    }
    return measured;
}

/// Where the time went. The yardstick may lack a step.
void note(const char* what, const std::vector<double>& ours, const std::vector<double>& yardstick) {
    std::printf("%-50s %9.4g ms ", what, median(ours));
    if (yardstick.empty())
        std::printf("%9s\n", "-");
    else
        std::printf("%9.4g ms %8.3f\n", median(yardstick), median(ours) / median(yardstick));
}

bool report(const Launches& times, int rounds) {
    const auto& [ours, yardstick] = times;
    Figures::begin("Start and clicks, beside a plain tray icon with a plain window; medians of " +
                   std::to_string(rounds) + " starts");
    const std::array comparisons{
        Comparison{"start to registration", "ms", median(ours.registered), median(yardstick.registered), 1.4},
        Comparison{"first click to first frame", "ms", median(ours.coldFrame), median(yardstick.coldFrame), 1.5},
        Comparison{"later clicks to first frame", "ms", median(ours.warmFrame), median(yardstick.warmFrame), 2},
    };
    bool areMet = true;
    for (const Comparison& each : comparisons)
        areMet &= each.report();
    note("  start to the bus", ours.onBus, yardstick.onBus);
    note("  start to a name there", ours.named, yardstick.named);
    note("  processor time until registration", ours.cpu, yardstick.cpu);
    note("  first click to window", ours.coldMap, yardstick.coldMap);
    note("  later clicks to window", ours.warmMap, yardstick.warmMap);
    return areMet;
}

bool reportMemory(Desktop& desktop, int seconds) {
    MemoryUse ours;
    MemoryUse yardstick;
    for (int round = 0; round < memoryRounds; ++round) {
        measureMemory({VELISK_DEMO}, desktop, seconds, ours);
        measureMemory({COMPOSITE_YARDSTICK, STAND_IN_ORIGIN}, desktop, seconds, yardstick);
    }
    Figures::begin("Memory, beside a plain tray icon with Qt's own client; medians of " + std::to_string(memoryRounds) +
                   " starts, " + std::to_string(seconds) + " s after each");
    const Comparison dirty{"private dirty memory", "kB", median(ours.privateDirty), median(yardstick.privateDirty),
                           1.25};
    const Comparison proportional{"proportional set size", "kB", median(ours.proportional),
                                  median(yardstick.proportional), 1.1};
    const bool isDirtyMet = dirty.report();
    desktop.depopulate();
    if (!isQtShared())
        return proportional.report() && isDirtyMet;
    // They have a part of what is shared.
    proportional.reportUncounted("not counted: other programs with Qt run");
    return isDirtyMet;
}

int measure(int rounds, int seconds) {
    sync(); // The pages of a program that was just built count as dirty until they are on the disk.
    Desktop desktop;
    fillCache(desktop);
    desktop.populate();
    const Launches times = measureLaunches(desktop, rounds);
    const bool isQuick = report(times, rounds);
    const bool isSmall = reportMemory(desktop, seconds);
    return isQuick && isSmall ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 11;
    const int seconds = argc > 2 ? std::atoi(argv[2]) : 10;
    return outcome([rounds, seconds] { return measure(rounds, seconds); });
}
