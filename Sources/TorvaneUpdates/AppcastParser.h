#pragma once

#include "TorvaneUpdates/Appcast.h"

#include <QXmlStreamReader>

namespace torvane::Updates {

/// Reads one feed, element by element; see readAppcast. Each function that reads an element is called when its start
/// has been read and returns when its end has been.
class AppcastParser final {
public:
    explicit AppcastParser(const QString& text)
        : m_xml(text) {}

    QList<AppcastItem> items();

private:
    /// Goes on to the next child of the present element; false at that element's end.
    bool nextChild();

    /// Goes on to the next token.
    QXmlStreamReader::TokenType next();

    void readRoot();
    void readRSS();
    void readChannel();
    void readItem();
    void readItemElement(AppcastItem& item);
    void readPlainElement(AppcastItem& item);
    void readSparkleElement(AppcastItem& item);
    void readOwnElement(AppcastItem& item);
    void readEnclosure(AppcastItem& item);
    QString readText();
    QString readWord();
    void skip();
    [[noreturn]] static void fail(const char* sentence);

    QXmlStreamReader m_xml;
    int m_depth = 0;
    int m_itemCount = 0;
    QList<AppcastItem> m_items;
};

} // namespace torvane::Updates
