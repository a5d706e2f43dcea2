#include "TorvaneUpdatesTests/SampleFeed.h"

#include <QTest>

using namespace torvane;
using namespace torvane::Updates;

/// What a feed has for people to read.
class AppcastTextTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void notesArePlainText_data() {
        QTest::addColumn<QByteArray>("description");
        QTest::addColumn<QString>("notes");
        const auto row = [](const char* name, const QByteArray& description, const char* notes) {
            QTest::newRow(name) << description << QString::fromUtf8(notes);
        };
        row("words", "  Faster.\n\nSmaller.\n", "Faster.\n\nSmaller.");
        row("markup as text", "<![CDATA[<b>Now</b> &amp; <script>x</script>]]>", "<b>Now</b> &amp; <script>x</script>");
        row("entities are decoded once", "&lt;b&gt; &amp;lt;i&amp;gt; &#169;", "<b> &lt;i&gt; \xc2\xa9");
        row("elements within", "<b>Bold</b> and <i>more</i>", "Bold and more");
        row("markdown", "# New\n* [here](https://x)", "# New\n* [here](https://x)");
        row("line ends", "a&#13;&#10;b&#13;c&#x2028;d&#x2029;e", "a\nb\nc\nd\ne");
        row("control characters", "a&#x7f;b&#x85;c&#x9b;d\te", "abcd\te");
        row("text turned around", "a&#x202e;b&#x2066;c&#x200f;d&#x61c;e&#xfeff;f&#x202c;", "abcdef");
        row("other scripts and emoji", "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d \xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x9a\x80",
            "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d \xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x9a\x80");
        row("nothing", "", "");
    }

    void notesArePlainText() {
        QFETCH(QByteArray, description);
        QFETCH(QString, notes);
        QCOMPARE(onlyItem(SampleFeed::item("1", "<description>" + description + "</description>")).notes, notes);
    }

    void notesWithoutEndAreCutBetweenCharacters() {
        const QByteArray smile = "\xf0\x9f\x99\x82";
        const QString notes =
            onlyItem(SampleFeed::item("1", "<description>x" + smile.repeated(15000) + "</description>")).notes;
        QCOMPARE(notes.size(), 20000);
        QCOMPARE(notes.right(3), QString::fromUtf8(smile) + QChar(0x2026));
    }

    void theVersionThatIsShownIsOneShortLine() {
        const auto shown = [](const QByteArray& text) {
            return onlyItem(
                       SampleFeed::item("1", "<sparkle:shortVersionString>" + text + "</sparkle:shortVersionString>"))
                .displayVersion;
        };
        QCOMPARE(shown("2.0\n\n  now &#x202e;free"), QStringLiteral("2.0 now free"));
        QCOMPARE(shown(QByteArray(500, '2')), QString(64, u'2') + QChar(0x2026));
        QCOMPARE(shown(" &#x202e; "), QStringLiteral("1"));
    }

    void datesAreReadWithAnyZone_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("isValid");
        QTest::newRow("an offset") << QByteArray("Sat, 21 Nov 2026 13:30:00 +0100") << true;
        QTest::newRow("GMT") << QByteArray("Sat, 21 Nov 2026 12:30:00 GMT") << true;
        QTest::newRow("UT") << QByteArray("21 Nov 2026 12:30:00 UT") << true;
        QTest::newRow("Z") << QByteArray("Sat, 21 Nov 2026 12:30:00 Z") << true;
        QTest::newRow("west") << QByteArray("Sat, 21 Nov 2026 07:30:00 -0500") << true;
        QTest::newRow("words") << QByteArray("yesterday") << false;
        QTest::newRow("no such day") << QByteArray("Sat, 31 Nov 2026 12:30:00 +0000") << false;
    }

    void datesAreReadWithAnyZone() {
        QFETCH(QByteArray, text);
        QFETCH(bool, isValid);
        const QDateTime date = onlyItem(SampleFeed::item("1", "<pubDate>" + text + "</pubDate>")).pubDate;
        QCOMPARE(date, isValid ? QDateTime({2026, 11, 21}, {12, 30}, Qt::UTC) : QDateTime());
    }
};

QTEST_GUILESS_MAIN(AppcastTextTest)
#include "AppcastTextTest.moc"
