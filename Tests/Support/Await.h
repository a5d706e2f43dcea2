#pragma once

#include "Support/Async.h"

#include <QTest>

namespace torvane {

/// Runs a task to its end on the test's loop; throws what the task threw. Ends the program when that takes a minute.
template <class T>
T await(const Task<T>& task) {
    task.start();
    if (!QTest::qWaitFor([&task] { return task.isDone(); }, 60'000))
        qFatal("A task does not end");
    return task.result();
}

} // namespace torvane
