#include "Platform/AutostartEntry.h"

#include "Support/BaseDirectory.h"
#include "Support/PackedProgram.h"
#include "Support/SafeFile.h"
#include "Support/Worker.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>

#include <tuple>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// A value of the type string: what would end the line, or open an escape, is escaped.
QString escapedValue(QString text) {
    return text.replace(u'\\', u"\\\\"_s).replace(u'\n', u"\\n"_s).replace(u'\r', u"\\r"_s).replace(u'\t', u"\\t"_s);
}

/// One argument of a command line. It is quoted always: the list of characters that need it is long, and quotes never
/// hurt.
QString quotedArgument(QString argument) {
    for (const QChar special : u"\\\"`$"_s) // The backslash first: it is what the others get.
        argument.replace(special, u'\\' + QString(special));
    return u'"' + argument.replace(u'%', u"%%"_s) + u'"';
}

/// Whether a path reads the same in every field, so that also the clients that unescape nothing find the file.
bool isPlain(const QString& path) {
    static const QRegularExpression plain(uR"(\A[-/\w.+,:@]+\z)"_s, QRegularExpression::UseUnicodePropertiesOption);
    return plain.match(path).hasMatch();
}

} // namespace

QString AutostartEntry::location(const QString& id) {
    const QString folder = BaseDirectory::config();
    return folder.isEmpty() ? folder : folder + u"/autostart/"_s + id + u".desktop"_s;
}

QByteArray AutostartEntry::text(const AutostartProgram& program) {
    QString entry = u"[Desktop Entry]\nType=Application\n"_s;
    const auto add = [&entry](const QString& key, const QString& value) {
        entry += key + u'=' + escapedValue(value) + u'\n';
    };
    add(u"Name"_s, program.name);
    add(u"Icon"_s, program.id);
    add(u"Exec"_s, quotedArgument(program.path));
    if (isPlain(program.path))
        add(u"TryExec"_s, program.path); // Once the program is removed, logging in tries nothing.
    add(u"Terminal"_s, u"false"_s);
    add(u"X-GNOME-Autostart-enabled"_s, u"true"_s);
    return entry.toUtf8();
}

void AutostartEntry::write(const AutostartProgram& program) {
    const QString path = location(program.id);
    if (path.isEmpty())
        return;
    worker().start([path, bytes = text(program)] {
        // Nobody is waiting for the answer, and there is nothing that the user could be told to do.
        std::ignore = SafeFile::replace(path, bytes);
    });
}

void AutostartEntry::remove(const QString& id) {
    const QString path = location(id);
    if (!path.isEmpty())
        worker().start([path] { std::ignore = SafeFile::remove(path); });
}

QString launchPath() {
    const QString executable = QCoreApplication::applicationFilePath();
    const QString image = QFile::decodeName(qgetenv("APPIMAGE"));
    const bool isItsImage = image.startsWith(u'/') && isPackedIn("APPDIR", executable);
    return isItsImage ? image : executable;
}

} // namespace torvane
