#pragma once

#include "Support/StandInAnswer.h"

#include <QList>

#include <utility>

/// What public nodes answer instead of what they are asked, each with its name.
namespace torvane::NodeFaults {

using Faults = QList<std::pair<const char*, StandInAnswer>>;

Faults all();

/// One by HTTP, one by JSON-RPC, one by its form, and none at all.
Faults oneOfEachKind();

} // namespace torvane::NodeFaults
