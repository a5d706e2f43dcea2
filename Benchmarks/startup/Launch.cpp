#include "startup/Launch.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr int warmClicks = 4;

double milliseconds(Nanoseconds from, Nanoseconds to) {
    return static_cast<double>(to - from) / 1e6;
}

/// Of all threads, by the scheduler's own books: ticks are too coarse.
double cpuMilliseconds(pid_t process) {
    Nanoseconds sum = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        Nanoseconds ran = 0;
        std::ifstream(thread.path() / "schedstat") >> ran;
        sum += ran;
    }
    return milliseconds(0, sum);
}

/// Follows a start on the bus. The first name there is the connection's own, with a colon.
void followStart(Nanoseconds start, pid_t process, Desktop& desktop, LaunchTimes& times) {
    bool isOnBus = false;
    bool isNamed = false;
    while (true) {
        const Desktop::PanelNews news = desktop.nextNews();
        if (news.time < start)
            continue;
        const double elapsed = milliseconds(start, news.time);
        if (news.what == "item") {
            times.registered.push_back(elapsed);
            times.cpu.push_back(cpuMilliseconds(process));
            return;
        }
        const bool isOwn = news.who.starts_with(':');
        if (news.what == "name" && isOwn && !std::exchange(isOnBus, true))
            times.onBus.push_back(elapsed);
        if (news.what == "name" && !isOwn && !std::exchange(isNamed, true))
            times.named.push_back(elapsed);
    }
}

void clickTwice(Desktop& desktop, FrameWatch& watch, std::vector<double>& map, std::vector<double>& frame) {
    const Nanoseconds click = desktop.click();
    const FrameWatch::Shown shown = watch.awaitWindow();
    map.push_back(milliseconds(click, shown.mapped));
    frame.push_back(milliseconds(click, shown.drawn));
    std::this_thread::sleep_for(200ms);
    desktop.click();
    watch.awaitEnd();
    std::this_thread::sleep_for(200ms);
}

} // namespace

void measureLaunch(const Program::Words& command, Desktop& desktop, FrameWatch& watch, LaunchTimes& times) {
    const Nanoseconds start = now();
    const Program program(command, desktop.environment());
    followStart(start, program.id(), desktop, times);
    std::this_thread::sleep_for(1500ms); // What follows the start is over: nobody clicks sooner.
    clickTwice(desktop, watch, times.coldMap, times.coldFrame);
    for (int i = 0; i < warmClicks; ++i)
        clickTwice(desktop, watch, times.warmMap, times.warmFrame);
}
