#pragma once

#include <QtGlobal>

/// The notification that gas is cheap.
namespace torvane::GasNotifier {

/// Asks for permission to show notifications, which elsewhere than in a sandbox everyone has: what remains is to wake
/// the desktop's notification service and to learn what it can do. Called once, at launch.
void requestAuthorization();

/// Posts one notification that the base fee (gwei) is below the user's threshold (gwei). Delivery is not observed.
void fireCheapGas(double baseFee, qint64 threshold, bool sound);

} // namespace torvane::GasNotifier
