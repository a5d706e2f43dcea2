#pragma once

#include <QHash>
#include <QString>

namespace torvane {

/// What is known of Layer 2 networks beside the figures.
namespace L2Metadata {

/// A one-line description for each network by its name.
const QHash<QString, QString>& kindByName();

} // namespace L2Metadata

/// The description of a network, matched exactly; "Layer 2" for any other.
QString l2Kind(const QString& name);

} // namespace torvane
