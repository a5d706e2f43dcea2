#pragma once

#include "rig/Desktop.h"
#include "startup/FrameWatch.h"

/// What starts and clicks took, in milliseconds, each as often as it was measured.
struct LaunchTimes {
    std::vector<double> onBus;      ///< from the start to the first connection to the bus
    std::vector<double> named;      ///< to a name on the bus: who has one knows that it is the first instance
    std::vector<double> registered; ///< to the item's registration with the panel
    std::vector<double> cpu;        ///< processor time of all threads until then
    std::vector<double> coldMap;    ///< from the first click to a window
    std::vector<double> coldFrame;  ///< and to its first frame
    std::vector<double> warmMap;    ///< the same from later clicks
    std::vector<double> warmFrame;
};

/// Starts the program anew, clicks on its badge again and again, and ends it.
void measureLaunch(const Program::Words& command, Desktop& desktop, FrameWatch& watch, LaunchTimes& times);
