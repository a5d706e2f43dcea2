#include "Support/PackedProgram.h"

#include <QFile>
#include <QFileInfo>

namespace torvane {

bool isPackedIn(const char* variable, const QString& program) {
    const QString folder = QFileInfo(QFile::decodeName(qgetenv(variable))).canonicalFilePath();
    return !folder.isEmpty() && program.startsWith(folder + QLatin1Char('/'));
}

bool isInFlatpak() {
    return QFile::exists(QStringLiteral("/.flatpak-info"));
}

} // namespace torvane
