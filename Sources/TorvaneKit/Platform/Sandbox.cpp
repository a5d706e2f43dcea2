#include "Platform/Sandbox.h"

#include <QFile>

namespace torvane {

bool isSandboxed() {
    return QFile::exists(QStringLiteral("/.flatpak-info")) || !qEnvironmentVariableIsEmpty("SNAP");
}

} // namespace torvane
