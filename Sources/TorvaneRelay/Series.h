#pragma once

#include "Model/Snapshot.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace torvane {

/// A network's gas prices of the last 24 hours, oldest first, one for each run.
struct Series {
    QList<double> points;
    double windowMinutes = 0; ///< from the first point to now
};

/// What an earlier document says of a network, and how long ago.
struct EarlierRow {
    L2Entry row;
    double minutesAgo;
};

/// The series that goes on from the earlier row, with the present price if there is one. None at the first run, and
/// when three runs or more are missing. A run that finds no price leaves a hole: the window grows and the points do
/// not; once half of them are missing, the series starts anew. What is older than 24 hours goes.
std::optional<Series> continued(const std::optional<EarlierRow>& earlier, std::optional<double> price,
                                double minutesBetweenRuns);

/// An earlier document's base fees of Ethereum, a point for each ten minutes, and how long ago the last one is.
struct EarlierBaseFees {
    QList<double> points;
    double minutesAgo;
};

/// What goes on from them where not all of the last day could be read anew: the newest points that were read, or the
/// present fee where there are none, take the place of the oldest, one for each mark of ten minutes that the clock has
/// passed. (Rounded run by run, their number would drift.) The newest alone where they are more, or where three runs or
/// more are missing.
QList<double> continuedBaseFees(const std::optional<EarlierBaseFees>& earlier, const QList<double>& newest,
                                double present, const QDateTime& now, double minutesBetweenRuns);

/// "Unavailable" without a price, "Elevated" when it is above one and a half times the median of the earlier points,
/// twelve at least, "Normal" otherwise.
QString congestion(std::optional<double> price, const QList<double>& earlierPoints);

} // namespace torvane
