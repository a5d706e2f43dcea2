#include "Coordination/LoginItem.h"

#include "Platform/AutostartEntry.h"
#include "Platform/BackgroundPortal.h"
#include "Platform/Sandbox.h"

using namespace Qt::StringLiterals;

namespace torvane {

void LoginItem::apply(bool launchAtLogin) {
    const QString id = u"org.velisk.Torvane"_s;
    if (isSandboxed())
        requestAutostart(QDBusConnection::sessionBus(), launchAtLogin, u"Show gas prices from login on"_s);
    else if (launchAtLogin)
        AutostartEntry::write({id, u"velisk"_s, launchPath()});
    else
        AutostartEntry::remove(id);
}

} // namespace torvane
