#pragma once

#include "TorvaneUpdates/Appcast.h"

#include <QByteArray>

namespace torvane {

/// A signature that is none of anything, and as an item's text.
inline QByteArray sampleSignature() {
    return QByteArray(64, 's');
}

/// Feeds as publishers write them.
struct SampleFeed final {
    /// A whole feed around what a channel has in it.
    static QByteArray of(const QByteArray& content) {
        return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
               "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\""
               " xmlns:torvane=\"urn:org.velisk.Torvane:appcast\">\n"
               "<channel><title>velisk</title>\n" +
               content + "\n</channel>\n</rss>\n";
    }

    /// A complete item, and what else it is to have.
    static QByteArray item(const QByteArray& version, const QByteArray& more = {}) {
        return "<item><sparkle:version>" + version + "</sparkle:version>" + more + enclosure() + "</item>\n";
    }

    static QByteArray enclosure(const QByteArray& more = {}) {
        return "<enclosure url=\"https://localhost/torvane/velisk\" length=\"1000\" type=\"application/octet-stream\""
               " sparkle:edSignature=\"" +
               sampleSignature().toBase64() + "\" " + more + "/>";
    }
};

/// What a feed of this one item is read as; of any other number of items, an item that says so.
inline Updates::AppcastItem onlyItem(const QByteArray& item) {
    const QList<Updates::AppcastItem> items = Updates::readAppcast(SampleFeed::of(item));
    return items.size() == 1 ? items.first()
                             : Updates::AppcastItem{.version = QStringLiteral("not one"), .displayVersion = {}};
}

} // namespace torvane
