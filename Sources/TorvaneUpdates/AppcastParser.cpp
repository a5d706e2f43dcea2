#include "TorvaneUpdates/AppcastParser.h"

#include "TorvaneUpdates/PlainText.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace torvane::Updates {

namespace {

constexpr int deepest = 16;                         // elements within elements
constexpr int mostItems = 1000;                     //
constexpr qsizetype longestText = qsizetype{65536}; // characters of one element's text
constexpr qsizetype longestVersion = 64;
constexpr qsizetype signatureSize = 64;

const QLatin1String sparkle("http://www.andymatuschak.org/xml-namespaces/sparkle");
const QLatin1String torvane("urn:org.velisk.Torvane:appcast");

/// What stands for itself in file names, notes and comparisons: no blanks, nothing that cannot be seen.
bool isVersion(const QString& text) {
    const auto isVisible = [](QChar c) { return c > u' ' && c < u'\x7f'; };
    return !text.isEmpty() && text.size() <= longestVersion && std::all_of(text.cbegin(), text.cend(), isVisible);
}

/// A whole number of digits alone.
std::optional<qint64> number(QStringView text) {
    const QByteArray digits = text.toLatin1();
    qint64 value = 0;
    const auto [end, error] = std::from_chars(digits.cbegin(), digits.cend(), value);
    const bool isNumber = error == std::errc() && end == digits.cend() && !digits.startsWith('-');
    return isNumber ? std::optional(value) : std::nullopt;
}

/// The address, or an empty one where its scheme is none of these, or where it names a user: such a one is made to look
/// like another host's.
QUrl address(const QString& text, std::initializer_list<QLatin1String> schemes) {
    const QUrl url(text, QUrl::StrictMode);
    const bool isKnown = std::find(schemes.begin(), schemes.end(), url.scheme()) != schemes.end();
    return url.isValid() && isKnown && !url.host().isEmpty() && url.userInfo().isEmpty() ? url : QUrl();
}

QUrl webAddress(const QString& text) {
    return address(text, {QLatin1String("https"), QLatin1String("http")});
}

/// RFC 822 as RSS has it. Qt knows offsets alone.
QDateTime date(QString text) {
    for (const char* zone : {" GMT", " UTC", " UT", " Z"}) {
        if (text.endsWith(QLatin1String(zone)))
            text = text.chopped(qsizetype(qstrlen(zone))) + QLatin1String(" +0000");
    }
    return QDateTime::fromString(text, Qt::RFC2822Date).toUTC();
}

QByteArray signature(QStringView text) {
    const auto decoded = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return decoded && (*decoded).size() == signatureSize ? *decoded : QByteArray();
}

bool isComplete(const AppcastItem& item) {
    if (!isVersion(item.version) || item.phasedRolloutInterval < std::chrono::seconds::zero())
        return false;
    if (item.isInformational)
        return !item.link.isEmpty();
    return !item.url.isEmpty() && item.length > 0 && item.length <= largestPayload && !item.signature.isEmpty();
}

} // namespace

QList<AppcastItem> AppcastParser::items() {
    readRoot();
    while (next() != QXmlStreamReader::EndDocument)
        continue; // What follows the last element may still be malformed.
    return m_items;
}

QXmlStreamReader::TokenType AppcastParser::next() {
    const QXmlStreamReader::TokenType token = m_xml.readNext();
    if (token == QXmlStreamReader::Invalid)
        fail("The update feed is not well-formed.");
    if (token == QXmlStreamReader::DTD)
        fail("The update feed declares a document type.");
    if (token == QXmlStreamReader::StartElement && ++m_depth > deepest)
        fail("The update feed is nested too deeply.");
    if (token == QXmlStreamReader::EndElement)
        --m_depth;
    return token;
}

bool AppcastParser::nextChild() {
    for (;;) {
        const QXmlStreamReader::TokenType token = next();
        if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement)
            return token == QXmlStreamReader::StartElement;
    }
}

void AppcastParser::readRoot() {
    if (!nextChild() || m_xml.name() != QLatin1String("rss") || !m_xml.namespaceUri().isEmpty())
        fail("The update feed is not RSS.");
    readRSS();
}

void AppcastParser::readRSS() {
    bool hasChannel = false;
    while (nextChild()) {
        const bool isChannel = m_xml.name() == QLatin1String("channel") && m_xml.namespaceUri().isEmpty();
        hasChannel = hasChannel || isChannel;
        isChannel ? readChannel() : skip();
    }
    if (!hasChannel)
        fail("The update feed is not RSS.");
}

void AppcastParser::readChannel() {
    while (nextChild()) {
        const bool isItem = m_xml.name() == QLatin1String("item") && m_xml.namespaceUri().isEmpty();
        isItem ? readItem() : skip();
    }
}

void AppcastParser::readItem() {
    if (++m_itemCount > mostItems)
        fail("The update feed has too many items.");
    AppcastItem item;
    while (nextChild())
        readItemElement(item);
    item.displayVersion = PlainText::line(item.displayVersion);
    if (item.displayVersion.isEmpty())
        item.displayVersion = item.version;
    if (isComplete(item))
        m_items.append(item);
}

void AppcastParser::readItemElement(AppcastItem& item) {
    if (m_xml.namespaceUri().isEmpty())
        readPlainElement(item);
    else if (m_xml.namespaceUri() == sparkle)
        readSparkleElement(item);
    else if (m_xml.namespaceUri() == torvane)
        readOwnElement(item);
    else
        skip();
}

void AppcastParser::readPlainElement(AppcastItem& item) {
    const QStringView name = m_xml.name();
    if (name == QLatin1String("enclosure"))
        readEnclosure(item);
    else if (name == QLatin1String("description"))
        item.notes = PlainText::paragraphs(readText());
    else if (name == QLatin1String("link"))
        item.link = webAddress(readWord());
    else if (name == QLatin1String("pubDate"))
        item.pubDate = date(readWord());
    else
        skip();
}

void AppcastParser::readSparkleElement(AppcastItem& item) {
    const QStringView name = m_xml.name();
    if (name == QLatin1String("version")) {
        item.version = readWord();
    } else if (name == QLatin1String("shortVersionString")) {
        item.displayVersion = readWord();
    } else if (name == QLatin1String("os")) {
        item.os = readWord();
    } else if (name == QLatin1String("minimumSystemVersion")) {
        item.minimumSystemVersion = readWord();
    } else if (name == QLatin1String("channel")) {
        item.channel = readWord();
    } else if (name == QLatin1String("releaseNotesLink")) {
        item.notesLink = webAddress(readWord());
    } else if (name == QLatin1String("phasedRolloutInterval")) {
        item.phasedRolloutInterval = std::chrono::seconds(number(readWord()).value_or(-1));
    } else if (name == QLatin1String("criticalUpdate")) {
        item.isCritical = true;
        item.criticalBelow = m_xml.attributes().value(sparkle, QLatin1String("version")).trimmed().toString();
        skip();
    } else {
        item.isInformational = item.isInformational || name == QLatin1String("informationalUpdate");
        skip();
    }
}

void AppcastParser::readOwnElement(AppcastItem& item) {
    const QStringView name = m_xml.name();
    if (name == QLatin1String("product"))
        item.product = readWord();
    else if (name == QLatin1String("architecture"))
        item.architecture = readWord();
    else
        skip();
}

void AppcastParser::readEnclosure(AppcastItem& item) {
    const QXmlStreamAttributes attributes = m_xml.attributes();
    const auto own = [&](const char* name) { return attributes.value(QLatin1String(name)).trimmed(); };
    const auto ofSparkle = [&](const char* name) { return attributes.value(sparkle, QLatin1String(name)).trimmed(); };
    item.url = address(own("url").toString(), {QLatin1String("https")});
    item.length = number(own("length")).value_or(0);
    item.signature = signature(ofSparkle("edSignature"));
    // These three may stand on the item instead, which then counts.
    if (item.version.isEmpty())
        item.version = ofSparkle("version").toString();
    if (item.displayVersion.isEmpty())
        item.displayVersion = ofSparkle("shortVersionString").toString();
    if (item.os.isEmpty())
        item.os = ofSparkle("os").toString();
    skip();
}

QString AppcastParser::readText() {
    QString text;
    const int depth = m_depth;
    while (m_depth >= depth) {
        if (next() == QXmlStreamReader::Characters)
            text += m_xml.text();
        if (text.size() > longestText)
            fail("The update feed has a text that is too long.");
    }
    return text;
}

QString AppcastParser::readWord() {
    return readText().trimmed();
}

void AppcastParser::skip() {
    const int depth = m_depth;
    while (m_depth >= depth)
        next();
}

void AppcastParser::fail(const char* sentence) {
    throw AppcastFailure(sentence);
}

} // namespace torvane::Updates
