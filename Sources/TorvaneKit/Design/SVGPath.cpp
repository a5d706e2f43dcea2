#include "Design/SVGPath.h"

#include "Design/EllipticalArc.h"
#include "Support/JSONNumber.h"
#include "Support/PowersOfTen.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>

namespace torvane::SVGPath {

namespace {

enum Kind : quint8 { other, separator, commandLetter };

constexpr auto kinds = [] {
    std::array<Kind, 256> result{};
    for (const char each : std::string_view(" \t\n\r,"))
        result[static_cast<quint8>(each)] = separator;
    for (const char each : std::string_view("MLHVCSQTAZmlhvcsqtaz"))
        result[static_cast<quint8>(each)] = commandLetter;
    return result;
}();

constexpr bool is(Kind kind, char scalar) {
    return kinds[static_cast<quint8>(scalar)] == kind;
}

constexpr bool isDigit(char scalar) {
    return scalar >= '0' && scalar <= '9';
}

/// The digits of a number, read so far.
struct Decimal {
    const char* at;     ///< what follows them
    quint64 digits = 0; ///< of more than 19 digits it has lost the first
    qsizetype count = 0;

    void readRun() {
        const char* const begin = at;
        for (; isDigit(*at); ++at)
            digits = digits * 10 + static_cast<quint64>(*at - '0');
        count += at - begin;
    }
};

/// Passes an exponent, if there is one; false when it has no digits.
bool passExponent(const char*& at) {
    if (*at != 'e' && *at != 'E')
        return true;
    ++at;
    at += *at == '-' || *at == '+';
    const char* const begin = at;
    while (isDigit(*at))
        ++at;
    return at > begin;
}

bool isRelative(char letter) {
    return letter >= 'a';
}

/// QPainterPath leaves out, without a word, what reaches further than this. NaN does not fit either.
bool fits(QPointF point) {
    return std::abs(point.x()) < 1e128 && std::abs(point.y()) < 1e128;
}

template <class... Points>
bool fit(Points... points) {
    return (fits(points) && ...);
}

class Parser final {
public:
    explicit Parser(QStringView text)
        : s(text.toLatin1()) {}

    QPainterPath parse();

private:
    bool draw(QPainterPath& to);
    bool moves(QPainterPath& to, bool rel);
    bool lines(QPainterPath& to, bool rel);
    bool horizontals(QPainterPath& to, bool rel);
    bool verticals(QPainterPath& to, bool rel);
    bool cubics(QPainterPath& to, bool rel);
    bool smoothCubics(QPainterPath& to, bool rel);
    bool quads(QPainterPath& to, bool rel, bool smooth);
    bool arcs(QPainterPath& to, bool rel);
    bool close(QPainterPath& to);

    bool line(QPainterPath& to, QPointF end);
    bool cubic(QPainterPath& to, QPointF first, QPointF second, QPointF end);
    bool quad(QPainterPath& to, QPointF control, QPointF end);
    bool arc(QPainterPath& to, const EllipticalArc& arc);

    std::optional<double> num();
    std::optional<QPointF> point(bool rel);
    bool another();
    void skipSeparators();
    void forgetControls();

    const QByteArray s; ///< with a question mark for each scalar that Latin-1 has not: path data has a use for neither
    qsizetype i = 0;
    QPointF cur;
    QPointF start;
    std::optional<QPointF> lastC;
    std::optional<QPointF> lastQ;
    std::optional<char> cmd;
};

QPainterPath Parser::parse() {
    QPainterPath path;
    for (;;) {
        skipSeparators();
        if (i == s.size())
            return path;
        if (!is(commandLetter, s[i]))
            return {}; // Every command but Z has read all its groups, Z takes none, and before the first there is none.
        cmd = s[i++];
        if (!draw(path))
            return {};
    }
}

bool Parser::draw(QPainterPath& to) {
    const bool rel = isRelative(*cmd);
    switch (*cmd | 0x20) {
    case 'm':
        return moves(to, rel);
    case 'l':
        return lines(to, rel);
    case 'h':
        return horizontals(to, rel);
    case 'v':
        return verticals(to, rel);
    case 'c':
        return cubics(to, rel);
    case 's':
        return smoothCubics(to, rel);
    case 'q':
        return quads(to, rel, false);
    case 't':
        return quads(to, rel, true);
    case 'a':
        return arcs(to, rel);
    default:
        return close(to);
    }
}

bool Parser::moves(QPainterPath& to, bool rel) {
    const std::optional<QPointF> target = point(rel);
    if (!target || !fits(*target))
        return false;
    to.moveTo(*target);
    cur = start = *target;
    forgetControls();
    return another() ? lines(to, rel) : true;
}

bool Parser::lines(QPainterPath& to, bool rel) {
    do {
        // The control points stay: an S or T after a line reflects that of the last curve before it.
        const std::optional<QPointF> end = point(rel);
        if (!end || !line(to, *end))
            return false;
    } while (another());
    return true;
}

bool Parser::horizontals(QPainterPath& to, bool rel) {
    do {
        const std::optional<double> x = num();
        if (!x || !line(to, {rel ? cur.x() + *x : *x, cur.y()}))
            return false;
        forgetControls();
    } while (another());
    return true;
}

bool Parser::verticals(QPainterPath& to, bool rel) {
    do {
        const std::optional<double> y = num();
        if (!y || !line(to, {cur.x(), rel ? cur.y() + *y : *y}))
            return false;
        forgetControls();
    } while (another());
    return true;
}

bool Parser::cubics(QPainterPath& to, bool rel) {
    do {
        const std::optional<QPointF> first = point(rel);
        const std::optional<QPointF> second = first ? point(rel) : std::nullopt;
        const std::optional<QPointF> end = second ? point(rel) : std::nullopt;
        if (!end || !cubic(to, *first, *second, *end))
            return false;
    } while (another());
    return true;
}

bool Parser::smoothCubics(QPainterPath& to, bool rel) {
    do {
        const QPointF first = lastC ? 2 * cur - *lastC : cur;
        const std::optional<QPointF> second = point(rel);
        const std::optional<QPointF> end = second ? point(rel) : std::nullopt;
        if (!end || !cubic(to, first, *second, *end))
            return false;
    } while (another());
    return true;
}

bool Parser::quads(QPainterPath& to, bool rel, bool smooth) {
    do {
        const QPointF reflection = lastQ ? 2 * cur - *lastQ : cur;
        const std::optional<QPointF> control = smooth ? reflection : point(rel);
        const std::optional<QPointF> end = control ? point(rel) : std::nullopt;
        if (!end || !quad(to, *control, *end))
            return false;
        smooth = true; // On purpose: of several groups after a Q, only the first has a control point of its own.
    } while (another());
    return true;
}

bool Parser::arcs(QPainterPath& to, bool rel) {
    do {
        const std::optional<QPointF> radii = point(false);
        const std::optional<double> degrees = radii ? num() : std::nullopt;
        const std::optional<double> large = degrees ? num() : std::nullopt;
        const std::optional<double> sweep = large ? num() : std::nullopt;
        const std::optional<QPointF> end = sweep ? point(rel) : std::nullopt;
        if (!end || !arc(to, {cur, *end, *radii, *degrees, *large != 0, *sweep != 0}))
            return false;
        forgetControls();
    } while (another());
    return true;
}

bool Parser::close(QPainterPath& to) {
    to.closeSubpath();
    cur = start;
    forgetControls();
    return true;
}

bool Parser::line(QPainterPath& to, QPointF end) {
    if (!fits(end))
        return false;
    to.lineTo(end);
    cur = end;
    return true;
}

bool Parser::cubic(QPainterPath& to, QPointF first, QPointF second, QPointF end) {
    if (!fit(first, second, end))
        return false;
    to.cubicTo(first, second, end);
    lastC = second;
    lastQ.reset();
    cur = end;
    return true;
}

bool Parser::quad(QPainterPath& to, QPointF control, QPointF end) {
    if (!fit(control, end))
        return false;
    to.quadTo(control, end);
    lastQ = control;
    lastC.reset();
    cur = end;
    return true;
}

bool Parser::arc(QPainterPath& to, const EllipticalArc& arc) {
    // Compared exactly: a nearly full turn ends very near its start.
    if (arc.from.x() == arc.to.x() && arc.from.y() == arc.to.y())
        return true;
    if (arc.radii.x() == 0 || arc.radii.y() == 0)
        return line(to, arc.to);
    const auto segments = arc.segments();
    return fits(arc.radii) && std::ranges::all_of(segments, [&](const CubicSegment& segment) {
               return cubic(to, segment.first, segment.second, segment.end);
           });
}

/// The next number; none when there is none or it is malformed or too large. The index has passed what was read anyway.
std::optional<double> Parser::num() {
    skipSeparators();
    const char* const sign = s.constData() + i;
    const char* const begin = sign + (*sign == '+' || *sign == '-');
    Decimal decimal{begin};
    decimal.readRun();
    const qsizetype whole = decimal.count;
    if (*decimal.at == '.') {
        ++decimal.at;
        decimal.readRun();
    }
    const char* const mark = decimal.at;
    const bool isWhole = passExponent(decimal.at) && decimal.count > 0;
    i = decimal.at - s.constData();
    if (!isWhole)
        return std::nullopt;
    double value = 0;
    if (decimal.at == mark && decimal.count < 16)
        value = static_cast<double>(decimal.digits) / exactPowersOfTen[static_cast<std::size_t>(decimal.count - whole)];
    else if (value = JSON::numberValue({begin, static_cast<std::size_t>(decimal.at - begin)}); !std::isfinite(value))
        return std::nullopt;
    return *sign == '-' ? -value : value;
}

std::optional<QPointF> Parser::point(bool rel) {
    const std::optional<double> x = num();
    const std::optional<double> y = x ? num() : std::nullopt;
    if (!y)
        return std::nullopt;
    return rel ? QPointF(cur.x() + *x, cur.y() + *y) : QPointF(*x, *y);
}

/// Whether the command in force has another group.
bool Parser::another() {
    skipSeparators();
    return i < s.size() && !is(commandLetter, s[i]);
}

void Parser::skipSeparators() {
    const char* at = s.constData() + i;
    while (is(separator, *at))
        ++at;
    i = at - s.constData();
}

void Parser::forgetControls() {
    lastC.reset();
    lastQ.reset();
}

} // namespace

QPainterPath path(QStringView from) {
    return Parser(from).parse();
}

} // namespace torvane::SVGPath
