#include "startup/Memory.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace {

double kilobytes(const std::string& rollup, const std::string& what) {
    const size_t at = rollup.find('\n' + what + ':');
    if (at == std::string::npos)
        giveUp("The kernel does not tell what memory a process has");
    return std::stod(rollup.substr(at + what.size() + 2));
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

void measureMemory(const Program::Words& command, Desktop& desktop, int seconds, MemoryUse& use) {
    Program program(command, desktop.environment());
    while (desktop.nextNews().what != "item") {
    }
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    desktop.depopulate();
    if (!program.isRunning())
        giveUp(command.front() + " ended");
    const std::string rollup = contentOf("/proc/" + std::to_string(program.id()) + "/smaps_rollup");
    use.privateDirty.push_back(kilobytes(rollup, "Private_Dirty"));
    use.proportional.push_back(kilobytes(rollup, "Pss"));
    desktop.populate();
}

bool isQtShared() {
    for (const auto& process : std::filesystem::directory_iterator("/proc")) {
        std::error_code unreadable; // Processes end, and some are not ours to read.
        if (std::filesystem::exists(process.path() / "maps", unreadable) &&
            contentOf(process.path() / "maps").find("/libQt6Core.so") != std::string::npos)
            return true;
    }
    return false;
}
