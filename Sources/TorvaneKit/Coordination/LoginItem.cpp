#include "Coordination/LoginItem.h"

#include "Model/ApplicationId.h"
#include "Platform/AutostartEntry.h"
#include "Platform/BackgroundPortal.h"
#include "Platform/Sandbox.h"

using namespace Qt::StringLiterals;

namespace torvane {

void LoginItem::apply(bool launchAtLogin) {
    if (isSandboxed())
        requestAutostart(QDBusConnection::sessionBus(), launchAtLogin, u"Show gas prices from login on"_s);
    else if (launchAtLogin)
        AutostartEntry::write({applicationId, u"velisk"_s, launchPath()});
    else
        AutostartEntry::remove(applicationId);
}

} // namespace torvane
