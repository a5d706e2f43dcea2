#pragma once

#include "Model/Snapshot.h"

#include <QByteArrayView>

namespace torvane {

/// The same records by way of RapidJSON's document tree, strictly: what a program would do without a codec of its own.
/// Throws std::runtime_error.
Snapshot extractFromTree(QByteArrayView bytes);

} // namespace torvane
