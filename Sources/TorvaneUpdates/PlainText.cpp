#include "TorvaneUpdates/PlainText.h"

#include <algorithm>

namespace torvane::Updates::PlainText {

namespace {

constexpr qsizetype longestText = 20000; // characters
constexpr qsizetype longestLine = 64;

/// The marks, embeddings, overrides and isolates of Unicode's bidirectional algorithm: text in any script reads right
/// without them, and with them a sentence can be made to look like another.
bool turnsDirection(char16_t c) {
    return c == 0x061c || c == 0x200e || c == 0x200f || (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
}

bool isShown(QChar c) {
    constexpr char16_t byteOrderMark = 0xfeff;
    if (c == u'\n' || c == u'\t')
        return true;
    return c.category() != QChar::Other_Control && c != byteOrderMark && !turnsDirection(c.unicode());
}

QString shown(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.removeIf([](QChar c) { return !isShown(c); });
    return text;
}

QString cut(const QString& text, qsizetype longest) {
    if (text.size() <= longest)
        return text;
    // Never in the middle of a character.
    const qsizetype length = text[longest - 1].isHighSurrogate() ? longest - 1 : longest;
    return text.first(length) + QChar(0x2026);
}

} // namespace

QString paragraphs(const QString& text) {
    return cut(shown(text).trimmed(), longestText);
}

QString line(const QString& text) {
    return cut(shown(text).simplified(), longestLine);
}

} // namespace torvane::Updates::PlainText
