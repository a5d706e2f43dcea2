// How often the whole program wakes up, beside the yardstick: voluntary context switches a minute, both at the same
// time, in an X server and on a bus of their own, before a panel that reads them. The stand-in relay and its nodes
// answer them on this machine. WakeupsBenchmark [MINUTES [SECONDS BEFORE]]
// exits with 1 where the bar is missed, with 2 where nothing could be measured
#include "Comparison.h"
#include "ThreadSwitches.h"
#include "rig/Desktop.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

using namespace std::chrono_literals;

namespace {

void waitForItems(Desktop& desktop) {
    for (int missing = 2; missing > 0;)
        missing -= desktop.nextNews().what == "item";
}

struct Counts {
    std::vector<double> all;
    std::vector<double> main;
};

void addMinute(ThreadSwitches& switches, Counts& counts) {
    switches.update();
    counts.all.push_back(switches.ofAllThreads());
    counts.main.push_back(switches.ofMainThread());
}

void measureMinute(const Program& ours, const Program& yardstick, Counts& mine, Counts& theirs) {
    ThreadSwitches oursSwitches(ours.id());
    ThreadSwitches yardstickSwitches(yardstick.id());
    for (int second = 0; second < 59; ++second) {
        std::this_thread::sleep_for(1s);
        oursSwitches.update();
        yardstickSwitches.update();
    }
    std::this_thread::sleep_for(1s);
    addMinute(oursSwitches, mine);
    addMinute(yardstickSwitches, theirs);
}

struct Measured {
    Counts mine;
    Counts theirs;
};

Measured measure(const Program& ours, const Program& yardstick, int minutes) {
    Measured measured;
    for (int minute = 0; minute < minutes; ++minute)
        measureMinute(ours, yardstick, measured.mine, measured.theirs);
    return measured;
}

/// The figure stays what it is from the next poll on: below the last digit shown, each block's tips may still differ.
void keepTheFigureStill(const Desktop& desktop) {
    const std::string certificate = TORVANE_TEST_CERTIFICATES "/ca.pem";
    Program order(
        {"curl", "--silent", "--fail", "--cacert", certificate, "--data", "baseFee 8", STAND_IN_ORIGIN "/control"},
        desktop.environment());
    if (!order.succeeds())
        giveUp("The stand-in relay does not take orders");
}

void printMain(const Measured& measured) {
    std::printf("%-50s %9.4g     %8.4g\n", "  of these the main thread", median(measured.mine.main),
                median(measured.theirs.main));
}

/// Each change costs what the panel asks when it hears of it: how many questions, it decides. So there is no bar.
void printMoving(const Measured& moving) {
    std::printf("%-50s %9.4g     %8.4g %8.3f\n", "with another figure at each block", median(moving.mine.all),
                median(moving.theirs.all), median(moving.mine.all) / median(moving.theirs.all));
    printMain(moving);
}

int report(const Measured& still, const Measured& moving) {
    Figures::begin("Voluntary context switches a minute, beside a tray icon with Qt's client; medians of " +
                   std::to_string(still.mine.all.size()) + " minutes");
    const Comparison all{"whole program, the badge unchanged, a poll per block", "", median(still.mine.all),
                         median(still.theirs.all), 0.5};
    const bool isMet = all.report();
    printMain(still);
    printMoving(moving);
    return isMet ? 0 : 1;
}

int measureBoth(int minutes, std::chrono::seconds before) {
    Desktop desktop;
    std::ofstream(desktop.config() / "preferences.json") << R"({"liveGasCadence":"Per block"})";
    desktop.populate();
    Program ours({VELISK_DEMO}, desktop.environment());
    Program yardstick({COMPOSITE_YARDSTICK, STAND_IN_ORIGIN}, desktop.environment());
    waitForItems(desktop);
    std::this_thread::sleep_for(before);
    const Measured moving = measure(ours, yardstick, minutes);
    keepTheFigureStill(desktop);
    std::this_thread::sleep_for(before + 1min); // The document that says so has been fetched by then.
    const Measured still = measure(ours, yardstick, minutes);
    if (!ours.isRunning() || !yardstick.isRunning())
        giveUp("One of the programs ended");
    return report(still, moving);
}

} // namespace

int main(int argc, char** argv) {
    const int minutes = argc > 1 ? std::atoi(argv[1]) : 3;
    const std::chrono::seconds before(argc > 2 ? std::atoi(argv[2]) : 20);
    return outcome([minutes, before] { return measureBoth(minutes, before); });
}
