#pragma once

#include <chrono>
#include <condition_variable>
#include <dlfcn.h>
#include <mutex>
#include <netdb.h>
#include <string_view>

/// Replaces the C library's resolver in the test program that includes this: names below "stand-in.test" are this
/// machine, and "silent.stand-in.test" is asked of a name server that does not answer until it is told to.
namespace torvane::StandInResolver {

struct State {
    std::mutex mutex;
    std::condition_variable changed;
    int waiting = 0;
    bool isReleased = false;
    bool isTiredOfWaiting = false;
};

/// Never destroyed: a resolver thread may outlive main().
inline State& state() {
    static State* const only = new State;
    return *only;
}

/// How many look-ups wait for an answer.
inline int waiting() {
    const std::lock_guard lock(state().mutex);
    return state().waiting;
}

/// Whether a look-up waited so long that it gave up, as one does when the program waits for it in turn.
inline bool isTiredOfWaiting() {
    const std::lock_guard lock(state().mutex);
    return state().isTiredOfWaiting;
}

/// Lets the look-ups that wait fail, and silences the name server again once they have.
inline void release() {
    std::unique_lock lock(state().mutex);
    state().isReleased = true;
    state().changed.notify_all();
    state().changed.wait(lock, [] { return state().waiting == 0; });
    state().isReleased = false;
}

inline void waitForRelease() {
    std::unique_lock lock(state().mutex);
    ++state().waiting;
    if (!state().changed.wait_for(lock, std::chrono::seconds(60), [] { return state().isReleased; }))
        state().isTiredOfWaiting = true;
    --state().waiting;
    state().changed.notify_all();
}

} // namespace torvane::StandInResolver

extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result) {
    using Function = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    const std::string_view name = node ? node : "";
    if (name == "silent.stand-in.test") {
        torvane::StandInResolver::waitForRelease();
        return EAI_AGAIN;
    }
    return real(name.ends_with(".stand-in.test") ? "127.0.0.1" : node, service, hints, result);
}
