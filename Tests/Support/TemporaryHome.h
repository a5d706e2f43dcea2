#pragma once

#include "Support/Worker.h"

#include <QTemporaryDir>

namespace torvane {

/// A folder of a test's own for what the worker writes. It goes when the worker is done: a file that is written into a
/// folder which has just been removed makes it anew.
class TemporaryHome final : public QTemporaryDir {
public:
    ~TemporaryHome() { worker().waitForDone(); }
};

} // namespace torvane
