#include "Coordination/Notifications.h"

#include "Model/ApplicationId.h"
#include "Model/Format.h"
#include "Platform/UserNotificationCenter.h"

#include <string>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

UserNotificationCenter notificationCenter() {
    return {QDBusConnection::sessionBus(), {u"velisk"_s, applicationId}, notificationRoute()};
}

} // namespace

void GasNotifier::requestAuthorization() {
    notificationCenter().requestAuthorization();
}

void GasNotifier::fireCheapGas(double baseFee, qint64 threshold, bool sound) {
    const QString body = u"Base fee dropped to %1 gwei (below %2). Good window to transact."_s.arg(
        Format::gwei(baseFee), QLatin1StringView(std::to_string(threshold)));
    notificationCenter().post({u"Gas is cheap"_s, body, sound});
}

} // namespace torvane
