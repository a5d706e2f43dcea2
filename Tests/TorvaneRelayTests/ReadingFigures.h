#pragma once

#include "Reading.h"

#include <QMap>
#include <QStringList>

namespace torvane {

/// A reading as named texts, "none" for what is missing, so that comparisons name what differs.
using Figures = QMap<QString, QString>;

Figures figuresOf(const Reading& reading, const RelayTable& table);

/// Those of one network's row.
Figures figuresOf(const NetworkReading& reading);

/// The names of the figures that differ.
QStringList differing(const Figures& first, const Figures& second);

} // namespace torvane
