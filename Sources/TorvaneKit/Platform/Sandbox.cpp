#include "Platform/Sandbox.h"

#include "Support/PackedProgram.h"

#include <QCoreApplication>

namespace torvane {

bool isSandboxed() {
    return isInFlatpak() || isPackedIn("SNAP", QCoreApplication::applicationFilePath());
}

} // namespace torvane
