#pragma once

#include "Support/Async.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTest>
#include <QTimer>

#include <chrono>

namespace torvane {

/// Runs a task to its end on the test's loop; throws what the task threw. Ends the program when that takes a minute.
/// It waits for events and not for a clock, so that tests of many small steps are quick.
template <class T>
T await(const Task<T>& task) {
    const QDeadlineTimer limit(std::chrono::minutes(1));
    QTimer wakeUp; // Without it the loop would wait for an event for ever.
    wakeUp.start(std::chrono::seconds(1));
    task.start();
    while (!task.isDone()) {
        if (limit.hasExpired())
            qFatal("A task does not end");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return task.result();
}

} // namespace torvane
