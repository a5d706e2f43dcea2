#pragma once

#include "Support/Worker.h"

namespace torvane::Updates {

/// The thread for what takes long in an update, so that it holds up nothing else: waiting for the disk, checking a
/// whole file, running a program. It is made for the first of these, and awaited when the application ends.
Worker& updateWorker();

} // namespace torvane::Updates
