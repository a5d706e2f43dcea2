#include "Platform/BackgroundPortal.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace torvane {

void requestAutostart(const QDBusConnection& bus, bool autostart, const QString& reason) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                                       u"org.freedesktop.portal.Background"_s, u"RequestBackground"_s);
    // The portal starts the command inside the sandbox, where the program is on the path.
    const QString command = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    const QVariantMap options{
        {u"autostart"_s, autostart}, {u"commandline"_s, QStringList{command}}, {u"reason"_s, reason}};
    const QString noParentWindow;
    call.setArguments({noParentWindow, options});
    bus.asyncCall(call);
}

} // namespace torvane
