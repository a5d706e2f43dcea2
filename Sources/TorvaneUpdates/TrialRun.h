#pragma once

#include <QStringView>

#include <chrono>
#include <stop_token>

namespace torvane::Updates {

/// Runs the program in this file, which is open for reading and for nobody's writing, once with "--version". It must
/// end well within the limit and name this version; otherwise UpdateFailure is thrown. Blocks. A stop ends it early,
/// as a failure.
void tryOut(int program, QStringView version, std::chrono::milliseconds limit, const std::stop_token& stop);

} // namespace torvane::Updates
