#include "Successor.h"

#include "Takeover.h"

#include <system_error>

namespace torvane {

Task<bool> Successor::relaunch(QString executable) {
    Task<bool> takingOver = takesOver(executable);
    const bool isThere = co_await takingOver;
    if (!isThere) {
        Task<> returning = m_instance.takeAgain();
        co_await returning;
    }
    co_return isThere;
}

Task<bool> Successor::takesOver(QString executable) {
    Takeover takeover(m_bus, m_id, m_limit);
    Task<> releasing = m_instance.release();
    co_await releasing;
    try {
        takeover.start(executable);
    } catch (const std::system_error&) {
        co_return false; // Nobody has been started: the same as one that ends at once.
    }
    const bool isThere = co_await takeover.outcome();
    Task<> ending = takeover.end();
    co_await ending;
    co_return isThere;
}

} // namespace torvane
