#pragma once

#include "rig/Desktop.h"

/// What a process holds some seconds after its start, in kilobytes, each as often as it was measured.
struct MemoryUse {
    std::vector<double> privateDirty; ///< what is its own, whoever else runs
    std::vector<double> proportional; ///< with its part of what it shares
};

/// Starts the program in the populated desktop, and reads so many seconds after its registration, when the panel and
/// the servers are gone. They are back afterwards.
void measureMemory(const Program::Words& command, Desktop& desktop, int seconds, MemoryUse& use);

/// Whether other programs with Qt run on this machine. They have a part of what ours shares, so that proportional
/// figures say little.
bool isQtShared();
