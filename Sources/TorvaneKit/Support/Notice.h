#pragma once

#include <QString>

namespace torvane {

/// Says a sentence to whoever started the program and wonders: on standard error, which is the terminal or the
/// session's log. For what keeps the program from being seen or from keeping things; what fails and is tried again is
/// not said. Safe to call from any thread.
void notice(const QString& sentence);

} // namespace torvane
