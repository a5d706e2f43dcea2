#include "TorvaneUpdates/Version.h"

#include <QList>

#include <algorithm>

namespace torvane::Updates {

namespace {

/// The kinds of what a version consists of, in the order in which they sort where two versions part: a word comes
/// before the end, so that 1.0b1 < 1.0, and the end before anything else, so that 1.0 < 1.0.1.
enum class Kind { word, end, separator, number };

struct Part {
    Kind kind;
    QStringView text; // Of a number without its leading zeros.
};

Kind kindOf(QChar character) {
    if (character >= u'0' && character <= u'9')
        return Kind::number;
    return character.isSpace() || character.isPunct() ? Kind::separator : Kind::word;
}

QStringView withoutLeadingZeros(QStringView digits) {
    while (digits.startsWith(u'0'))
        digits = digits.sliced(1);
    return digits;
}

/// Takes the next part off the front.
Part takePart(QStringView& rest) {
    const Kind kind = kindOf(rest.front());
    qsizetype length = 1;
    while (kind != Kind::separator && length < rest.size() && kindOf(rest[length]) == kind)
        ++length;
    const QStringView text = rest.first(length);
    rest = rest.sliced(length);
    return {kind, kind == Kind::number ? withoutLeadingZeros(text) : text};
}

bool isZero(const Part& part) {
    return part.kind == Kind::number && part.text.isEmpty();
}

/// Before a word and before the end, separators and the zeros behind them say nothing: 1.0.0 is 1, and 1.0.b2 is 1b2.
void dropTrailingZeros(QList<Part>& parts) {
    while (!parts.isEmpty()) {
        const bool isZeroBehindSeparator =
            parts.size() > 1 && isZero(parts.last()) && parts[parts.size() - 2].kind == Kind::separator;
        if (parts.last().kind != Kind::separator && !isZeroBehindSeparator)
            return;
        parts.removeLast();
    }
}

QList<Part> partsOf(QStringView version) {
    const qsizetype dash = version.indexOf(u'-');
    QStringView rest = (dash < 0 ? version : version.first(dash)).trimmed();
    QList<Part> parts;
    while (!rest.isEmpty()) {
        const Part part = takePart(rest);
        if (part.kind == Kind::word)
            dropTrailingZeros(parts);
        parts.append(part);
    }
    dropTrailingZeros(parts);
    parts.append({Kind::end, {}});
    return parts;
}

std::strong_ordering compareParts(const Part& a, const Part& b) {
    if (a.kind != b.kind)
        return a.kind <=> b.kind;
    if (a.kind == Kind::separator)
        return std::strong_ordering::equal; // 1,2 is 1.2.
    // Numbers of any length: without leading zeros, the longer one is the larger.
    if (a.kind == Kind::number && a.text.size() != b.text.size())
        return a.text.size() <=> b.text.size();
    return a.text.compare(b.text) <=> 0;
}

} // namespace

std::strong_ordering compareVersions(QStringView a, QStringView b) {
    const QList<Part> ours = partsOf(a);
    const QList<Part> theirs = partsOf(b);
    return std::lexicographical_compare_three_way(ours.cbegin(), ours.cend(), theirs.cbegin(), theirs.cend(),
                                                  compareParts);
}

} // namespace torvane::Updates
