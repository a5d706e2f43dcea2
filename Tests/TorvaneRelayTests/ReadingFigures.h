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

/// What is missing when this question to Ethereum's only node has no good answer; empty where all of it is.
QStringList missingWithout(const QString& question);

/// The same for the row of a network that has one node.
QStringList missingInRowWithout(const QString& question);

} // namespace torvane
