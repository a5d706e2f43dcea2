#include "TorvaneUpdates/Appcast.h"

#include "TorvaneUpdates/AppcastParser.h"

#include <QUtf8StringView>

#include <algorithm>

namespace torvane::Updates {

namespace {

constexpr int mostAttributes = 256; // of one element, far above what feeds have

/// Qt compares each attribute of an element with each other: a feed of one element could keep it busy for minutes. Only
/// what stands in a tag counts, not the quotes in a text. No attribute has a less-than sign in it, so that each one
/// begins a tag, or something that is longer than any: whatever a comment leaves open hides nothing behind it.
bool hasTooManyAttributes(const QString& text) {
    int found = 0;
    bool isInTag = false;
    QChar quote; // that ends the value
    QChar before;
    for (const QChar c : text) {
        if (c == u'<') {
            found = 0;
            isInTag = true;
            quote = {};
        } else if (!quote.isNull()) {
            quote = c == quote ? QChar() : quote;
        } else if (isInTag && before == u'=' && (c == u'"' || c == u'\'')) {
            quote = c;
            ++found;
        } else if (c == u'>') {
            isInTag = false;
        }
        if (found > mostAttributes)
            return true;
        before = c.isSpace() ? before : c;
    }
    return false;
}

} // namespace

QList<AppcastItem> readAppcast(const QByteArray& bytes) {
    if (bytes.size() > largestFeed)
        throw AppcastFailure("The update feed is too large.");
    if (!QUtf8StringView(bytes.constData(), bytes.size()).isValidUtf8())
        throw AppcastFailure("The update feed is not UTF-8 text.");
    // As text: no encoding that the feed declares can change what was looked at here.
    const QString text = QString::fromUtf8(bytes);
    if (hasTooManyAttributes(text))
        throw AppcastFailure("The update feed has an element of too many attributes.");
    return AppcastParser(text).items();
}

} // namespace torvane::Updates
