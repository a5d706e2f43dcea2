#include "FailingDisk.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace torvane::FailingDisk {

namespace {

// Plain storage: calls come before main and after it.
std::array<char, PATH_MAX> g_directory;
std::atomic<bool> g_isArmed = false;
std::atomic<int> g_calls = 0;
std::array<std::atomic<const char*>, 1000> g_functions{};
Fault g_fault;

bool concerns(std::string_view path) {
    return g_isArmed && path.starts_with(g_directory.data());
}

bool concerns(int file) {
    if (!g_isArmed)
        return false;
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    std::array<char, PATH_MAX> path{};
    const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
    return length > 0 && concerns(std::string_view(path.data(), static_cast<std::size_t>(length)));
}

/// Counts a call that concerns the directory: true if it fails.
template <class Subject>
bool fails(const char* function, Subject subject) {
    if (!concerns(subject) || (!g_fault.only.empty() && g_fault.only != function))
        return false;
    const int call = ++g_calls;
    if (static_cast<std::size_t>(call) < g_functions.size())
        g_functions[static_cast<std::size_t>(call)] = function;
    const bool isFailing = g_fault.call > 0 && (g_fault.isLasting ? call >= g_fault.call : call == g_fault.call);
    if (isFailing && g_fault.kills)
        ::raise(SIGKILL);
    if (isFailing && g_fault.meanwhile) {
        g_fault.meanwhile();
        return false;
    }
    if (isFailing)
        errno = g_fault.error;
    return isFailing;
}

template <class Function>
Function* systems(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

void arm(const QByteArray& directory, const Fault& fault) {
    std::copy_n(directory.constData(), directory.size() + 1, g_directory.begin());
    g_fault = fault;
    g_calls = 0;
    for (auto& function : g_functions)
        function = "";
    g_isArmed = true;
}

int disarm() {
    g_isArmed = false;
    return g_calls;
}

std::string_view functionOf(int call) {
    return g_functions.at(static_cast<std::size_t>(call)).load();
}

} // namespace torvane::FailingDisk

using namespace torvane::FailingDisk;

extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    static auto* const next = systems<int(const char*, int, ...)>("open");
    return fails("open", path) ? -1 : next(path, flags, mode);
}

ssize_t read(int file, void* bytes, size_t size) {
    static auto* const next = systems<ssize_t(int, void*, size_t)>("read");
    return fails("read", file) ? -1 : next(file, bytes, size);
}

ssize_t write(int file, const void* bytes, size_t size) {
    static auto* const next = systems<ssize_t(int, const void*, size_t)>("write");
    if (fails("write", file))
        return -1;
    const bool isShort = g_fault.writesShort && concerns(file);
    return next(file, bytes, isShort ? std::min<size_t>(size, 7) : size);
}

int fsync(int file) {
    static auto* const next = systems<int(int)>("fsync");
    return fails("fsync", file) ? -1 : next(file);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow" // The system has a struct of this name too.
int flock(int file, int operation) noexcept {
    static auto* const next = systems<int(int, int)>("flock");
    return fails("flock", file) ? -1 : next(file, operation);
}
#pragma GCC diagnostic pop

int rename(const char* from, const char* to) noexcept {
    static auto* const next = systems<int(const char*, const char*)>("rename");
    return fails("rename", from) ? -1 : next(from, to);
}

int link(const char* from, const char* to) noexcept {
    static auto* const next = systems<int(const char*, const char*)>("link");
    return fails("link", from) ? -1 : next(from, to);
}

int unlink(const char* path) noexcept {
    static auto* const next = systems<int(const char*)>("unlink");
    return fails("unlink", path) ? -1 : next(path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    static auto* const next = systems<int(const char*, mode_t)>("mkdir");
    return fails("mkdir", path) ? -1 : next(path, mode);
}

} // extern "C"
