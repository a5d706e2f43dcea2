#include "Design/SVGPath.h"

#include "Design/EllipticalArc.h"
#include "Support/JSONNumber.h"

#include <QVarLengthArray>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

namespace torvane::SVGPath {

namespace {

constexpr std::string_view commandLetters = "MLHVCSQTAZmlhvcsqtaz";

/// Stands for every scalar outside ASCII: path data has no use for any of them.
constexpr char foreignScalar = '\x7f';

bool isSeparator(char scalar) {
    return scalar == ' ' || scalar == ',' || scalar == '\n' || scalar == '\t' || scalar == '\r';
}

bool isDigit(char scalar) {
    return scalar >= '0' && scalar <= '9';
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
    explicit Parser(QStringView text);

    QPainterPath parse();

private:
    using Scalars = QVarLengthArray<char, 2048>;

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
    bool digits();
    bool another();
    bool atCommand() const { return i < s.size() && commandLetters.find(s[i]) != std::string_view::npos; }
    char here() const { return i < s.size() ? s[i] : '\0'; }
    void skipSeparators();
    void forgetControls();

    Scalars s;
    qsizetype i = 0;
    QPointF cur;
    QPointF start;
    std::optional<QPointF> lastC;
    std::optional<QPointF> lastQ;
    std::optional<char> cmd;
};

Parser::Parser(QStringView text)
    : s(text.size()) {
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at].unicode();
        s[at] = unit < 0x7f ? static_cast<char>(unit) : foreignScalar;
    }
}

QPainterPath Parser::parse() {
    QPainterPath path;
    for (;;) {
        skipSeparators();
        if (i == s.size())
            return path;
        if (atCommand())
            cmd = s[i++];
        else
            return {}; // Every command but Z has read all its groups, Z takes none, and before the first there is none.
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
    const bool plus = here() == '+';
    const qsizetype begin = i + plus; // The conversion knows no such sign.
    i += plus || here() == '-';
    bool any = digits();
    if (here() == '.') {
        ++i;
        any = digits() || any;
    }
    if (here() == 'e' || here() == 'E') {
        ++i;
        if (here() == '-' || here() == '+')
            ++i;
        if (!digits())
            return std::nullopt;
    }
    if (!any)
        return std::nullopt;
    const double value = JSON::numberValue({s.data() + begin, static_cast<std::size_t>(i - begin)});
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<QPointF> Parser::point(bool rel) {
    const std::optional<double> x = num();
    const std::optional<double> y = x ? num() : std::nullopt;
    if (!y)
        return std::nullopt;
    return rel ? QPointF(cur.x() + *x, cur.y() + *y) : QPointF(*x, *y);
}

/// Passes a run of digits; false when there is none.
bool Parser::digits() {
    const qsizetype begin = i;
    while (isDigit(here()))
        ++i;
    return i > begin;
}

/// Whether the command in force has another group.
bool Parser::another() {
    skipSeparators();
    return i < s.size() && !atCommand();
}

void Parser::skipSeparators() {
    while (isSeparator(here()))
        ++i;
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
