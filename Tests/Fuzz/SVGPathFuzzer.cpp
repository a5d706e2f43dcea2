#include "Design/SVGPath.h"

#include <QRegularExpression>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

/// How many numbers follow a command letter, as its first group and as each further one.
struct Groups {
    int first;
    int further;
};

Groups groups(QChar letter) {
    switch (letter.toLower().unicode()) {
    case 'h':
    case 'v':
        return {1, 1};
    case 'c':
        return {6, 6};
    case 's':
        return {4, 4};
    case 'q':
        return {4, 2};
    case 'a':
        return {7, 7};
    default:
        return {2, 2};
    }
}

/// The slow twin, which judges by the form alone.
bool isWellFormed(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral("^[ \\t\\n\\r,]*(?:([MLHVCSQTAZmlhvcsqtaz])([^A-DF-Za-df-z]*+))?+"));
    static const QRegularExpression number(
        QStringLiteral("^[ \\t\\n\\r,]*+[-+]?+(?:[0-9]++(?:\\.[0-9]*+)?+|\\.[0-9]++)(?:[eE][-+]?+[0-9]++)?+(?![eE])"));
    QStringView rest(text);
    for (;;) {
        const QRegularExpressionMatch command = form.match(rest);
        rest = rest.sliced(command.capturedLength());
        if (!command.hasCaptured(1))
            return rest.isEmpty();
        QStringView arguments = command.capturedView(2);
        int count = 0;
        for (auto match = number.match(arguments); match.hasMatch(); match = number.match(arguments), ++count)
            arguments = arguments.sliced(match.capturedLength());
        static const QRegularExpression gap(QStringLiteral("^[ \\t\\n\\r,]*+$"));
        const QChar letter = command.capturedView(1).front();
        const auto [first, further] = groups(letter);
        const bool complete = letter.toLower() == u'z' ? count == 0 : count >= first && (count - first) % further == 0;
        if (!complete || !gap.match(arguments).hasMatch())
            return false;
    }
}

/// Whether no number can be too large, nor any sum of them, and there is something to draw: an arc may be no arc.
bool isDrawn(const QString& text) {
    static const QRegularExpression large(QStringLiteral("[eE]|[0-9]{20}"));
    static const QRegularExpression drawing(QStringLiteral("[MLHVCSQTmlhvcsqt]"));
    return !text.contains(large) && text.contains(drawing);
}

bool isTame(double value) {
    return value == 0 || (std::abs(value) > 1e-6 && std::abs(value) < 1e6);
}

/// Whether no element can have been left out for lying where the one before it does, as Qt sees it.
bool areApart(const QPainterPath& path) {
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (!isTame(element.x) || !isTame(element.y))
            return false;
        if (i > 0 && std::hypot(element.x - path.elementAt(i - 1).x, element.y - path.elementAt(i - 1).y) < 1e-3)
            return false;
    }
    return true;
}

void append(QString& text, const QPainterPath::Element& element) {
    for (const double value : {element.x, element.y}) {
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        text += QLatin1Char(' ') + QString::fromLatin1(digits, end - digits);
    }
}

/// The path as path data, absolute, in the shortest numbers that are exact.
QString written(const QPainterPath& path) {
    QString text;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (element.type != QPainterPath::CurveToDataElement)
            text += QLatin1Char("MLC"[element.type]);
        append(text, element);
    }
    return text;
}

bool haveSameElements(const QPainterPath& one, const QPainterPath& other) {
    if (one.elementCount() != other.elementCount())
        return false;
    for (int i = 0; i < one.elementCount(); ++i) {
        const QPainterPath::Element a = one.elementAt(i);
        const QPainterPath::Element b = other.elementAt(i);
        if (a.type != b.type || a.x != b.x || a.y != b.y)
            return false;
    }
    return true;
}

} // namespace

/// Any text as path data: it draws nothing when it is malformed and only then, no point is out of bounds, and the path
/// written out is read as the same path.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QPainterPath path = SVGPath::path(text);
    for (int i = 0; i < path.elementCount(); ++i)
        insist(std::abs(path.elementAt(i).x) < 1e128 && std::abs(path.elementAt(i).y) < 1e128);
    if (!isWellFormed(text))
        insist(path.elementCount() == 0);
    else if (isDrawn(text))
        insist(path.elementCount() > 0);
    insist(haveSameElements(path, SVGPath::path(QStringLiteral(", \t") + text + QStringLiteral("\r\n,"))));
    if (areApart(path))
        insist(haveSameElements(path, SVGPath::path(written(path))));
    return 0;
}
