#include "TorvaneUpdates/Appcast.h"

#include "TorvaneUpdates/AppcastParser.h"

#include <QUtf8StringView>

#include <algorithm>

namespace torvane::Updates {

namespace {

constexpr int mostAttributes = 256; // of one element, far above what feeds have

/// Qt compares each attribute of an element with each other: a feed of one element could keep it busy for minutes. An
/// attribute needs an equals sign and a quote, and no tag spans a less-than sign. Text that goes on like this for
/// hundreds of times without one is refused with it.
bool hasTooManyAttributes(const QString& text) {
    int found = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'<')
            found = 0;
        if (text[i] != u'=')
            continue;
        while (i + 1 < text.size() && text[i + 1].isSpace())
            ++i;
        const bool isQuoted = i + 1 < text.size() && (text[i + 1] == u'"' || text[i + 1] == u'\'');
        if (isQuoted && ++found > mostAttributes)
            return true;
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
