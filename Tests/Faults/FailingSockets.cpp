#include "FailingSockets.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <dlfcn.h>
#include <sys/socket.h>
#include <unistd.h>

namespace torvane::FailingSockets {

namespace {

// Plain storage: calls come before main and after it, from any thread.
std::array<std::atomic<bool>, 4096> g_isWatched{}; ///< by descriptor
std::atomic<bool> g_isArmed = false;
std::atomic<int> g_calls = 0;
Family g_family = Family::internet;
Fault g_fault;

bool isOfTheFamily(int domain) {
    return g_family == Family::local ? domain == AF_UNIX : domain == AF_INET || domain == AF_INET6;
}

std::atomic<bool>* mark(int descriptor) {
    const auto index = static_cast<std::size_t>(descriptor);
    return descriptor >= 0 && index < g_isWatched.size() ? &g_isWatched[index] : nullptr;
}

bool isWatched(int descriptor) {
    const std::atomic<bool>* found = mark(descriptor);
    return g_isArmed && found && *found;
}

/// Counts a call: true if it fails.
bool fails(Call call) {
    if (!g_isArmed || call != g_fault.call)
        return false;
    const int number = ++g_calls;
    const bool isFailing =
        g_fault.number > 0 && (g_fault.isLasting ? number >= g_fault.number : number == g_fault.number);
    if (isFailing)
        errno = g_fault.error;
    return isFailing;
}

bool fails(Call call, int descriptor) {
    if (!isWatched(descriptor) || !fails(call))
        return false;
    // A connection that broke is broken for reading too, and libraries rely on it.
    if (call == Call::send || call == Call::receive)
        ::shutdown(descriptor, SHUT_RDWR);
    errno = g_fault.error;
    return true;
}

template <class Function>
Function* systems(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

void arm(Family family, const Fault& fault) {
    for (std::atomic<bool>& each : g_isWatched)
        each = false;
    g_family = family;
    g_fault = fault;
    g_calls = 0;
    g_isArmed = true;
}

int disarm() {
    g_isArmed = false;
    return g_calls;
}

} // namespace torvane::FailingSockets

using namespace torvane::FailingSockets;

extern "C" {

int socket(int domain, int type, int protocol) noexcept {
    static auto* const next = systems<int(int, int, int)>("socket");
    return isOfTheFamily(domain) && fails(Call::socket) ? -1 : next(domain, type, protocol);
}

int connect(int descriptor, const sockaddr* address, socklen_t size) {
    static auto* const next = systems<int(int, const sockaddr*, socklen_t)>("connect");
    if (g_isArmed && isOfTheFamily(address->sa_family)) {
        if (std::atomic<bool>* found = mark(descriptor))
            *found = true;
    }
    return fails(Call::connect, descriptor) ? -1 : next(descriptor, address, size);
}

int close(int descriptor) {
    static auto* const next = systems<int(int)>("close");
    // Its number may be a server's next.
    if (std::atomic<bool>* found = mark(descriptor))
        *found = false;
    return next(descriptor);
}

ssize_t send(int descriptor, const void* bytes, size_t size, int flags) {
    static auto* const next = systems<ssize_t(int, const void*, size_t, int)>("send");
    return fails(Call::send, descriptor) ? -1 : next(descriptor, bytes, size, flags);
}

ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    static auto* const next = systems<ssize_t(int, const msghdr*, int)>("sendmsg");
    return fails(Call::send, descriptor) ? -1 : next(descriptor, message, flags);
}

ssize_t recv(int descriptor, void* bytes, size_t size, int flags) {
    static auto* const next = systems<ssize_t(int, void*, size_t, int)>("recv");
    return fails(Call::receive, descriptor) ? -1 : next(descriptor, bytes, size, flags);
}

ssize_t recvmsg(int descriptor, msghdr* message, int flags) {
    static auto* const next = systems<ssize_t(int, msghdr*, int)>("recvmsg");
    return fails(Call::receive, descriptor) ? -1 : next(descriptor, message, flags);
}

} // extern "C"
