#pragma once

#include <QtGlobal>

/// The notification that gas is cheap.
namespace torvane::GasNotifier {

/// Asks for permission to show notifications. Everyone has it, in a sandbox too until the user takes it away: what
/// remains is to wake the desktop's notification service. Called once, at launch.
void requestAuthorization();

/// Posts one notification that the base fee (gwei) is below the user's threshold (gwei). Delivery is not observed.
void fireCheapGas(double baseFee, qint64 threshold, bool sound);

} // namespace torvane::GasNotifier
