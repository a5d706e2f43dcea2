#include "Support/BaseDirectory.h"

#include <QFile>

#include <pwd.h>
#include <unistd.h>

namespace torvane::BaseDirectory {

namespace {

/// The variable's value if it is an absolute path: the XDG rules have relative ones ignored.
QString absolutePath(const char* variable) {
    const QString path = QFile::decodeName(qgetenv(variable));
    return path.startsWith(QLatin1Char('/')) ? path : QString();
}

QString home() {
    const QString path = absolutePath("HOME");
    if (!path.isEmpty())
        return path;
    const passwd* user = ::getpwuid(::getuid());
    return user && user->pw_dir[0] == '/' ? QFile::decodeName(user->pw_dir) : QString();
}

QString directory(const char* variable, QLatin1StringView belowHome) {
    const QString path = absolutePath(variable);
    const QString base = path.isEmpty() ? home() : QString();
    return base.isEmpty() ? path : base + belowHome;
}

} // namespace

QString config() {
    return directory("XDG_CONFIG_HOME", QLatin1StringView("/.config"));
}

QString cache() {
    return directory("XDG_CACHE_HOME", QLatin1StringView("/.cache"));
}

QString data() {
    return directory("XDG_DATA_HOME", QLatin1StringView("/.local/share"));
}

QString runtime() {
    return absolutePath("XDG_RUNTIME_DIR");
}

} // namespace torvane::BaseDirectory
