#pragma once

#include <QString>

namespace torvane {

/// Networks that a list shows at most, far more than anybody looks through. A document may name hundreds of thousands,
/// and each would cost a row of widgets on the main thread.
inline constexpr qsizetype mostShownNetworks = 1000;

/// What stands below a list of so many networks in place of those that it leaves out: "and 1,234 more". Empty where it
/// leaves out none.
QString moreNetworks(qsizetype count);

} // namespace torvane
