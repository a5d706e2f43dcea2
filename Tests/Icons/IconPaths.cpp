#include "Icons/IconPaths.h"

#include <QFile>
#include <QRegularExpression>

namespace torvane {

namespace {

struct Command {
    QChar letter; ///< lower case
    QStringList numbers;
};

QList<Command> commands(const QString& path) {
    static const QRegularExpression command(QStringLiteral("([A-DF-Za-df-z])([^A-DF-Za-df-z]*)"));
    static const QRegularExpression number(QStringLiteral("[-+]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][-+]?[0-9]+)?"));
    QList<Command> result;
    for (const QRegularExpressionMatch& match : command.globalMatch(path)) {
        result.append({match.capturedView(1).front().toLower(), {}});
        for (const QRegularExpressionMatch& each : number.globalMatch(match.captured(2)))
            result.last().numbers.append(each.captured());
    }
    return result;
}

bool isFlag(const QString& number) {
    return number == QLatin1StringView("0") || number == QLatin1StringView("1");
}

bool haveFlagsApart(const QStringList& arcs) {
    for (qsizetype i = 0; i + 6 < arcs.size(); i += 7) {
        if (!isFlag(arcs[i + 3]) || !isFlag(arcs[i + 4]))
            return false;
    }
    return arcs.size() % 7 == 0;
}

/// Path data stands in these modules as a quoted string, and no other string looks like it.
void addPaths(const QString& module, QStringList& paths) {
    QFile file(QStringLiteral(TORVANE_ICONS "/") + module);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read", qPrintable(file.fileName()));
    static const QRegularExpression quoted(QStringLiteral("\"([Mm][-. 0-9][-+.,0-9 eMLHVCSQTAZmlhvcsqtaz]+)\""));
    const QString text = QString::fromUtf8(file.readAll());
    for (const QRegularExpressionMatch& match : quoted.globalMatch(text))
        paths.append(match.captured(1));
}

} // namespace

QStringList iconPaths() {
    QStringList paths;
    addPaths(QStringLiteral("@mdi/js/mdi.js"), paths);
    addPaths(QStringLiteral("simple-icons/index.mjs"), paths);
    return paths;
}

bool isReadAlike(const QString& path) {
    QChar curve; // The one that S or T would continue, while only lines follow it.
    bool lines = false;
    for (const auto& [letter, numbers] : commands(path)) {
        const bool continues = (letter == u's' && (curve == u'c' || curve == u's')) ||
                               (letter == u't' && (curve == u'q' || curve == u't'));
        if ((lines && continues) || (letter == u'a' && !haveFlagsApart(numbers)) ||
            (letter == u'q' && numbers.size() > 4))
            return false;
        lines = letter == u'l';
        if (!lines)
            curve = letter;
    }
    return true;
}

} // namespace torvane
