#pragma once

#include <QThreadPool>

namespace torvane {

/// The one background thread: decoding and durable writing run here, in the order in which they were handed over.
/// Everything that changes state stays on the main thread.
QThreadPool& worker();

} // namespace torvane
