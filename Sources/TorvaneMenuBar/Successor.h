#pragma once

#include "Platform/ApplicationInstance.h"
#include "Support/Async.h"

#include <QString>

#include <chrono>

namespace torvane {

/// Puts another program in this one's place in the session: gives up the place, starts the other one and waits until it
/// has the place and answers in it. One that ends before, or takes longer than the limit, is ended, and this program
/// takes its place again. Main thread only.
class Successor final {
public:
    /// `id` is the application's name on the bus.
    Successor(ApplicationInstance& instance, QDBusConnection bus, QString id,
              std::chrono::milliseconds limit = std::chrono::minutes(1))
        : m_instance(instance)
        , m_bus(std::move(bus))
        , m_id(std::move(id))
        , m_limit(limit) {}

    /// True once the program in this file has the place. Giving up the task ends what was started.
    Task<bool> relaunch(QString executable);

private:
    Task<bool> takesOver(QString executable);

    ApplicationInstance& m_instance;
    const QDBusConnection m_bus;
    const QString m_id;
    const std::chrono::milliseconds m_limit;
};

} // namespace torvane
