#pragma once

#include <QDBusConnection>
#include <QString>

namespace torvane {

/// Asks org.freedesktop.portal.Background to start this program at login, or no longer: how a sandboxed program does
/// it. The user may be asked. No call waits for an answer, and no failure is reported.
void requestAutostart(const QDBusConnection& bus, bool autostart, const QString& reason);

} // namespace torvane
