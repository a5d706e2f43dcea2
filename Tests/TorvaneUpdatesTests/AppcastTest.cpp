#include "TorvaneUpdates/Appcast.h"

#include "TorvaneUpdatesTests/SampleFeed.h"

#include <QTest>

using namespace torvane;
using namespace torvane::Updates;

namespace {

/// The sentence that a feed fails with, or how many items it has.
QString outcomeOf(const QByteArray& feed) {
    try {
        return QString::number(readAppcast(feed).size());
    } catch (const AppcastFailure& failure) {
        return QString::fromUtf8(failure.what());
    }
}

QByteArray nested(int levels) {
    return QByteArray("<x>").repeated(levels) + QByteArray("</x>").repeated(levels);
}

QByteArray many(int count, const QByteArray& piece) {
    QByteArray all;
    for (int i = 0; i < count; ++i)
        all += QByteArray(piece).replace("#", QByteArray::number(i));
    return all;
}

constexpr char malformed[] = "The update feed is not well-formed.";
constexpr char notRSS[] = "The update feed is not RSS.";
constexpr char documentType[] = "The update feed declares a document type.";

} // namespace

class AppcastTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void allOfAnItemIsRead() {
        const AppcastItem item = onlyItem(R"x(<item>
            <title>Version 1.2</title>
            <sparkle:version>1.2b3</sparkle:version>
            <sparkle:shortVersionString> 1.2 beta 3 </sparkle:shortVersionString>
            <sparkle:os>linux</sparkle:os>
            <sparkle:minimumSystemVersion>5.10</sparkle:minimumSystemVersion>
            <sparkle:channel>beta</sparkle:channel>
            <sparkle:phasedRolloutInterval>86400</sparkle:phasedRolloutInterval>
            <sparkle:criticalUpdate sparkle:version="1.1"/>
            <sparkle:releaseNotesLink>https://velisk.example/notes?a=1&amp;b=2</sparkle:releaseNotesLink>
            <torvane:product>org.velisk.Torvane</torvane:product>
            <torvane:architecture>x86_64</torvane:architecture>
            <link>https://velisk.example/</link>
            <pubDate>Sat, 21 Nov 2026 13:30:00 +0100</pubDate>
            <description><![CDATA[Faster.]]></description>
            <enclosure url="https://velisk.example/velisk-1.2b3" length="1234567" type="application/octet-stream"
                sparkle:edSignature="c3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzcw=="/>
            </item>)x");
        QCOMPARE(item.version, QStringLiteral("1.2b3"));
        QCOMPARE(item.displayVersion, QStringLiteral("1.2 beta 3"));
        QCOMPARE(item.url, QUrl(QStringLiteral("https://velisk.example/velisk-1.2b3")));
        QCOMPARE(item.length, qint64(1234567));
        QCOMPARE(item.signature, sampleSignature());
        QCOMPARE(item.notes, QStringLiteral("Faster."));
        QCOMPARE(item.notesLink, QUrl(QStringLiteral("https://velisk.example/notes?a=1&b=2")));
        QVERIFY(item.isCritical && !item.isInformational);
        QCOMPARE(item.criticalBelow, QStringLiteral("1.1"));
        QCOMPARE(item.link, QUrl(QStringLiteral("https://velisk.example/")));
        QCOMPARE(item.channel, QStringLiteral("beta"));
        QCOMPARE(item.os, QStringLiteral("linux"));
        QCOMPARE(item.minimumSystemVersion, QStringLiteral("5.10"));
        QVERIFY(item.phasedRolloutInterval == std::chrono::hours(24));
        QCOMPARE(item.pubDate, QDateTime({2026, 11, 21}, {12, 30}, Qt::UTC));
        QCOMPARE(item.product, QStringLiteral("org.velisk.Torvane"));
        QCOMPARE(item.architecture, QStringLiteral("x86_64"));
    }

    void theEnclosureMayNameVersionAndSystem() {
        const AppcastItem item =
            onlyItem("<item>" +
                     SampleFeed::enclosure("sparkle:version='7' sparkle:shortVersionString='7.0' sparkle:os='macos'") +
                     "</item>");
        QCOMPARE(item.version, QStringLiteral("7"));
        QCOMPARE(item.displayVersion, QStringLiteral("7.0"));
        QCOMPARE(item.os, QStringLiteral("macos"));
    }

    void theItemsOwnVersionCountsWhereverItStands() {
        const QByteArray own = "<sparkle:version>8</sparkle:version>";
        const QByteArray enclosure = SampleFeed::enclosure("sparkle:version='7'");
        QCOMPARE(onlyItem("<item>" + own + enclosure + "</item>").version, QStringLiteral("8"));
        QCOMPARE(onlyItem("<item>" + enclosure + own + "</item>").version, QStringLiteral("8"));
        QCOMPARE(onlyItem("<item>" + own + enclosure + "</item>").displayVersion, QStringLiteral("8"));
    }

    void aNamespaceCountsAndNotItsPrefix_data() {
        QTest::addColumn<QByteArray>("feed");
        QTest::addColumn<QString>("outcome");
        const QByteArray signature = sampleSignature().toBase64();
        const auto feed = [&](const QByteArray& declared, const QByteArray& prefix) {
            return "<rss " + declared + "><channel><item><" + prefix + "version>1</" + prefix +
                   "version><enclosure url='https://a/b' length='1' " + prefix + "edSignature='" + signature +
                   "'/></item></channel></rss>";
        };
        const QByteArray uri = "='http://www.andymatuschak.org/xml-namespaces/sparkle'";
        QTest::newRow("another prefix") << feed("xmlns:s" + uri, "s:") << QStringLiteral("1");
        QTest::newRow("another namespace")
            << feed("xmlns:sparkle='http://example/'", "sparkle:") << QStringLiteral("0");
        QTest::newRow("no namespace") << feed({}, {}) << QStringLiteral("0");
        QTest::newRow("a prefix that is not declared") << feed({}, "sparkle:") << QString::fromLatin1(malformed);
        QTest::newRow("RSS in a namespace")
            << QByteArray("<rss xmlns='http://example/'><channel/></rss>") << QString::fromLatin1(notRSS);
    }

    void aNamespaceCountsAndNotItsPrefix() {
        QFETCH(QByteArray, feed);
        QFETCH(QString, outcome);
        QCOMPARE(outcomeOf(feed), outcome);
    }

    void aMalformedFeedFailsAsAWhole_data() {
        QTest::addColumn<QByteArray>("feed");
        QTest::addColumn<QString>("sentence");
        const auto row = [](const char* name, const QByteArray& feed, const char* sentence) {
            QTest::newRow(name) << feed << QString::fromLatin1(sentence);
        };
        const QByteArray whole = SampleFeed::of(SampleFeed::item("1"));
        row("nothing", {}, malformed);
        row("words", "Not found", malformed);
        row("a web page", "<html><body>Not found</body></html>", notRSS);
        row("Atom", "<feed xmlns='http://www.w3.org/2005/Atom'/>", notRSS);
        row("no channel", "<rss/>", notRSS);
        row("something behind it", whole + "<rss/>", malformed);
        row("text behind it", whole + "and so on", malformed);
        row("a zero byte", QByteArray(whole).replace("velisk", QByteArray("ve\0isk", 6)), malformed);
        row("a character that XML has not", QByteArray(whole).replace("velisk", "&#8;"), malformed);
        row("a wrong tag", QByteArray(whole).replace("</title>", "</titel>"), malformed);
        row("an unknown entity", QByteArray(whole).replace("velisk", "&auml;"), malformed);
        row("an unknown entity in a note", SampleFeed::of(SampleFeed::item("1", "<description>&x;</description>")),
            malformed);
        row("a parameter entity", QByteArray(whole).replace("<rss", "<!DOCTYPE rss [<!ENTITY % a 'b'> %a;]><rss"),
            malformed);
        row("an attribute twice", QByteArray(whole).replace("url=", "length='1' url="), malformed);
        row("Latin-1", QByteArray(whole).replace("velisk", "\xe4"), "The update feed is not UTF-8 text.");
        row("UTF-16", QByteArray("\xff\xfe<\0r\0s\0s\0/\0>\0", 14), "The update feed is not UTF-8 text.");
        row("too large", SampleFeed::of(QByteArray(largestFeed, ' ')), "The update feed is too large.");
        row("too deep", SampleFeed::of(nested(15)), "The update feed is nested too deeply.");
        row("too deep in an item", SampleFeed::of("<item>" + nested(14) + "</item>"),
            "The update feed is nested too deeply.");
        row("far too deep", QByteArray("<rss>").repeated(100000), "The update feed is nested too deeply.");
        row("too many items", SampleFeed::of(many(1001, "<item/>")), "The update feed has too many items.");
        row("too long a text", SampleFeed::of(SampleFeed::item("1", "<link>" + QByteArray(65537, 'x') + "</link>")),
            "The update feed has a text that is too long.");
        row("too many attributes", SampleFeed::of("<item " + many(60000, "a#='' ") + "/>"),
            "The update feed has an element of too many attributes.");
        row("too many attributes with more in them", SampleFeed::of("<item " + many(300, "a#='>' b#=\"'/>\" ") + "/>"),
            "The update feed has an element of too many attributes.");
        row("too many attributes behind an open quote",
            SampleFeed::of("<!-- <a b=\" --><item " + many(300, "a#='' ") + "/>"),
            "The update feed has an element of too many attributes.");
        row("too many namespaces", SampleFeed::of("<item " + many(40000, "xmlns:a#\n=\n\"u\" ") + "/>"),
            "The update feed has an element of too many attributes.");
    }

    void aMalformedFeedFailsAsAWhole() {
        QFETCH(QByteArray, feed);
        QFETCH(QString, sentence);
        QCOMPARE(outcomeOf(feed), sentence);
    }

    void aFeedCutOffAnywhereFails() {
        const QByteArray whole = SampleFeed::of(SampleFeed::item("1", "<description>n</description>")).trimmed();
        QCOMPARE(outcomeOf(whole), QStringLiteral("1"));
        for (qsizetype length = 0; length < whole.size(); ++length)
            QVERIFY(outcomeOf(whole.first(length)).startsWith(QLatin1String("The update feed")));
    }

    void anyDocumentTypeIsRefused_data() {
        QTest::addColumn<QByteArray>("declaration");
        QTest::newRow("by name") << QByteArray("<!DOCTYPE rss>");
        QTest::newRow("outside") << QByteArray("<!DOCTYPE rss SYSTEM 'file:///etc/passwd'>");
        QTest::newRow("entities that grow")
            << QByteArray("<!DOCTYPE rss [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;&a;'>"
                          "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;&b;'>]>");
        QTest::newRow("an entity of a file") << QByteArray("<!DOCTYPE rss [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>");
    }

    void anyDocumentTypeIsRefused() {
        QFETCH(QByteArray, declaration);
        const QByteArray whole = SampleFeed::of(SampleFeed::item("1"));
        const qsizetype root = whole.indexOf("<rss");
        QCOMPARE(outcomeOf(QByteArray(whole).insert(root, declaration)), QString::fromLatin1(documentType));
        QVERIFY(outcomeOf(QByteArray(whole).insert(root, "<!DOCTYPE rss")).startsWith(QLatin1String("The update")));
        QCOMPARE(outcomeOf(whole + declaration), QString::fromLatin1(documentType));
    }

    void whatIsWithinTheLimitsIsRead() {
        QCOMPARE(outcomeOf(SampleFeed::of("<item>" + nested(13) + "</item>")), QStringLiteral("0"));
        QCOMPARE(outcomeOf(SampleFeed::of(many(1000, SampleFeed::item("#")))), QStringLiteral("1000"));
        QByteArray full = SampleFeed::of(SampleFeed::item("1"));
        full += QByteArray(largestFeed - full.size(), '\n');
        QCOMPARE(outcomeOf(full), QStringLiteral("1"));
        QCOMPARE(outcomeOf("\xef\xbb\xbf" + SampleFeed::of(SampleFeed::item("1"))), QStringLiteral("1"));
    }

    void quotesInANoteAreNotTakenForAttributes() {
        const QByteArray links = QByteArray("&lt;a href=\"x\"> &gt; ").repeated(1000);
        QCOMPARE(outcomeOf(SampleFeed::of(SampleFeed::item("1", "<description>" + links + "</description>"))),
                 QStringLiteral("1"));
    }

    /// The text is UTF-8, whatever it calls itself: nothing is looked at in one way and read in another.
    void aDeclaredEncodingChangesNothing() {
        for (const QByteArray encoding : {"UTF-16", "ISO-8859-1", "UTF-7", "none"}) {
            const QByteArray item = SampleFeed::item("1", "<description>\xc3\xa4</description>");
            const QByteArray feed = SampleFeed::of(item).replace("\"utf-8\"", '"' + encoding + '"');
            QVERIFY(feed.contains(encoding));
            const QList<AppcastItem> items = readAppcast(feed);
            QCOMPARE(items.size(), 1);
            QCOMPARE(items.first().notes, QString::fromUtf8("\xc3\xa4"));
        }
    }

    /// Of address, length and signature nothing is ever put together from two.
    void ofSeveralEnclosuresTheLastCountsAsAWhole() {
        const QByteArray version = "<item><sparkle:version>1</sparkle:version>";
        const QByteArray other = "<enclosure url=\"https://other.example/\" length=\"7\"/>";
        QCOMPARE(outcomeOf(SampleFeed::of(version + SampleFeed::enclosure() + other + "</item>")), QStringLiteral("0"));
        const AppcastItem item = onlyItem(version + other + SampleFeed::enclosure() + "</item>");
        QCOMPARE(item.url, QUrl(QStringLiteral("https://localhost/torvane/velisk")));
        QCOMPARE(item.length, qint64(1000));
    }

    void anIncompleteItemIsLeftOut_data() {
        QTest::addColumn<QByteArray>("item");
        const QByteArray item = SampleFeed::item("1");
        const auto row = [](const char* name, const QByteArray& text) { QTest::newRow(name) << text; };
        const auto with = [&](const char* name, const char* before, const QByteArray& after) {
            QVERIFY(item.contains(before));
            QTest::newRow(name) << QByteArray(item).replace(before, after);
        };
        row("empty", "<item/>");
        row("no version", "<item>" + SampleFeed::enclosure() + "</item>");
        row("no enclosure", "<item><sparkle:version>1</sparkle:version></item>");
        row("an enclosure within another element", "<item><sparkle:version>1</sparkle:version><sparkle:deltas>" +
                                                       SampleFeed::enclosure() + "</sparkle:deltas></item>");
        row("a blank in the version", SampleFeed::item("1 2"));
        row("a version in another script", SampleFeed::item("1.\xd9\xa1"));
        row("too long a version", SampleFeed::item(QByteArray(65, '1')));
        row("a rollout that is no number",
            SampleFeed::item("1", "<sparkle:phasedRolloutInterval>soon</sparkle:phasedRolloutInterval>"));
        row("a rollout below zero",
            SampleFeed::item("1", "<sparkle:phasedRolloutInterval>-1</sparkle:phasedRolloutInterval>"));
        row("informational without a link", SampleFeed::item("1", "<sparkle:informationalUpdate/>"));
        row("informational, linking to a file",
            SampleFeed::item("1", "<sparkle:informationalUpdate/><link>file:///etc/passwd</link>"));
        with("no address", "url=", "uri=");
        with("http", "https://localhost", "http://localhost");
        with("a file", "https://localhost", "file://localhost");
        with("a relative address", "https://localhost", "");
        with("no host", "https://localhost", "https://");
        with("somebody's name in the address", "https://localhost", "https://velisk.example@localhost");
        with("no such port", "https://localhost", "https://localhost:70000");
        with("no length", "length=", "size=");
        with("length 0", "\"1000\"", "\"0\"");
        with("a length below zero", "\"1000\"", "\"-1000\"");
        with("a length with a sign", "\"1000\"", "\"+1000\"");
        with("a length in words", "\"1000\"", "\"1000 bytes\"");
        with("a length in hexadecimal", "\"1000\"", "\"0x1000\"");
        with("a length beyond all numbers", "\"1000\"", "\"99999999999999999999\"");
        with("a length beyond the largest number", "\"1000\"", "\"9223372036854775808\"");
        with("a length beyond the cap", "\"1000\"", "\"268435457\"");
        with("no signature", "sparkle:edSignature", "sparkle:dsaSignature");
        with("a signature of no namespace", "sparkle:edSignature", "edSignature");
        with("an empty signature", sampleSignature().toBase64().constData(), "");
        with("a short signature", sampleSignature().toBase64().constData(), QByteArray(63, 's').toBase64());
        with("a long signature", sampleSignature().toBase64().constData(), QByteArray(65, 's').toBase64());
        with("a blank in the signature", sampleSignature().toBase64().constData(),
             sampleSignature().toBase64().insert(40, ' '));
        with("a signature that is not base64", sampleSignature().toBase64().constData(), QByteArray(88, '!'));
    }

    void anIncompleteItemIsLeftOut() {
        QFETCH(QByteArray, item);
        // The ones beside it are read.
        const QList<AppcastItem> items =
            readAppcast(SampleFeed::of(SampleFeed::item("2") + item + SampleFeed::item("3")));
        QCOMPARE(items.size(), 2);
        QCOMPARE(items.last().version, QStringLiteral("3"));
    }

    void anItemThatOnlyInformsNeedsNoPayload() {
        const AppcastItem item = onlyItem("<item><sparkle:version>2</sparkle:version><sparkle:informationalUpdate/>"
                                          "<link>https://velisk.example/</link></item>");
        QCOMPARE(item.version, QStringLiteral("2"));
        QVERIFY(item.isInformational && item.url.isEmpty());
    }

    void linksThatAreNotOfTheWebAreDropped() {
        for (const QByteArray link : {"javascript:alert(1)", "file:///etc/passwd", "data:text/html,x", "notes.html",
                                      "https://velisk.example@evil.example/"}) {
            const AppcastItem item = onlyItem(SampleFeed::item(
                "1", "<sparkle:releaseNotesLink>" + link + "</sparkle:releaseNotesLink><link>" + link + "</link>"));
            QCOMPARE(item.version, QStringLiteral("1"));
            QVERIFY(item.notesLink.isEmpty() && item.link.isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(AppcastTest)
#include "AppcastTest.moc"
