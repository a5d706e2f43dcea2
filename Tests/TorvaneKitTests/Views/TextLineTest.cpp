#include "Views/TextLine.h"

#include "Support/PaintCounter.h"
#include "Support/ToolTipReading.h"
#include "Views/Paragraph.h"

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

TextStyle style() {
    return {Fonts::sans(13, QFont::Normal), Palette::ink, 16};
}

QImage drawn(QWidget& widget, int width) {
    widget.resize(width, widget.sizeHint().height());
    QImage image(widget.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// The first and the last column that are not blank; nothing drawn gives none.
std::optional<std::pair<int, int>> inkedColumns(const QImage& image) {
    std::optional<std::pair<int, int>> columns;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) != Qt::white)
                columns = std::pair{columns ? columns->first : x, x};
        }
    }
    return columns;
}

} // namespace

class TextLineTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setCurrentAppearance(Appearance::light); }

    void aLineIsAsWideAsItsTextAndAsHighAsItsStyle() {
        TextLine narrow(style(), u"12"_s);
        TextLine wide(style(), u"1234"_s);
        QCOMPARE(narrow.sizeHint().height(), 16);
        QVERIFY(wide.sizeHint().width() > narrow.sizeHint().width());
        QVERIFY(drawn(wide, 100) != drawn(narrow, 100));
    }

    void whatFitsIsDrawnWhole() {
        TextLine line(style(), u"Mainnet"_s);
        const int width = line.sizeHint().width();
        const auto exact = inkedColumns(drawn(line, width));
        QCOMPARE(exact, inkedColumns(drawn(line, width + 100)));
    }

    void whatDoesNotFitEndsInAnEllipsisAndStaysWithin() {
        TextLine line(style(), u"The Incredibly Decentralised Superchain"_s);
        const auto columns = inkedColumns(drawn(line, 80));
        QVERIFY(columns && columns->second < 80);
        TextLine elided(style(), QFontMetricsF(style().font).elidedText(line.text(), Qt::ElideRight, 80));
        QVERIFY(elided.text().endsWith(u"…"_s));
        QCOMPARE(drawn(line, 80), drawn(elided, 80));
    }

    void aShorterTextStandsInWhereTheTextDoesNotFit() {
        TextLine line(style());
        line.setText(u"9.2 – 24.8 gwei · Average 13.9"_s, u"9.2 – 24.8 gwei"_s);
        TextLine shorter(style(), u"9.2 – 24.8 gwei"_s);
        const int room = shorter.sizeHint().width() + 5;
        QCOMPARE(drawn(line, room), drawn(shorter, room));
        QVERIFY(drawn(line, 300) != drawn(shorter, 300));
        QCOMPARE(line.minimumSizeHint().width(), shorter.sizeHint().width());
        QCOMPARE(line.accessibleName(), u"9.2 – 24.8 gwei · Average 13.9"_s);
        line.setText(line.text(), u"9.2"_s);
        QVERIFY(drawn(line, room) != drawn(shorter, room));
        QVERIFY(line.minimumSizeHint().width() < shorter.sizeHint().width());
    }

    void aRightAlignedTextEndsAtTheRightEdge() {
        TextStyle right = style();
        right.alignment = Qt::AlignRight;
        TextLine line(right, u"Hill"_s);
        const auto columns = inkedColumns(drawn(line, 200));
        QVERIFY(columns && columns->second >= 196);
    }

    void lineBreaksOfAStrangersTextDoNotBreakTheLine() {
        TextLine line(style(), u"Evil\nNetwork\t\u2028 X"_s);
        QCOMPARE(line.text(), u"Evil Network X"_s);
    }

    void markupIsText() {
        TextLine marked(style(), u"<b>X</b>"_s);
        TextLine plain(style(), u"X"_s);
        QVERIFY(marked.sizeHint().width() > 3 * plain.sizeHint().width());
    }

    void theSameTextIsNotDrawnAgain() {
        TextLine line(style(), u"just now"_s);
        line.show();
        QVERIFY(QTest::qWaitForWindowExposed(&line));
        PaintCounter paints(line);
        line.setText(u"just now"_s);
        line.setColor(Palette::ink);
        PaintCounter::settle();
        QCOMPARE(paints.count(), 0);
        line.setText(u"1m ago"_s);
        QTRY_VERIFY(paints.count() > 0);
        PaintCounter::settle();
        paints.reset();
        line.setColor(always(Palette::warn));
        QTRY_COMPARE(paints.count(), 1);
    }

    void theColourFollowsTheAppearance() {
        TextLine line(style(), u"█"_s);
        setCurrentAppearance(Appearance::dark);
        QCOMPARE(drawn(line, 20).pixelColor(4, 8), Palette::ink.in(Appearance::dark));
        setCurrentAppearance(Appearance::light);
        QCOMPARE(drawn(line, 20).pixelColor(4, 8), Palette::ink.in(Appearance::light));
    }

    void aCutTextIsItsToolTip() {
        TextLine line(style(), u"The Incredibly Decentralised Superchain"_s);
        line.resize(80, 16);
        line.show();
        QCOMPARE(toolTipOf(line), line.text());
        line.resize(400, 16);
        QCOMPARE(toolTipOf(line), QString());
    }

    void markupInAToolTipIsText() {
        TextLine line(style(), u"<h1>Base</h1> & <img src='/etc/hostname'>"_s);
        line.resize(20, 16);
        line.show();
        QCOMPARE(toolTipOf(line), line.text());
    }

    void theRestOfAnEndlessTextIsNotMeasured() {
        TextLine endless(style(), QString(100000, u'N'));
        TextLine cut(style(), QString(TextRun::mostDrawn, u'N'));
        QCOMPARE(endless.sizeHint(), cut.sizeHint());
        QCOMPARE(inkedColumns(drawn(endless, 100)), inkedColumns(drawn(cut, 100)));
        endless.show();
        QCOMPARE(toolTipOf(endless), QString(TextRun::mostDrawn, u'N') + u'…');
        QCOMPARE(endless.accessibleName().size(), 100000);
    }

    void assistiveTechnologyReadsAllOfIt() {
        TextLine line(style(), u"The Incredibly Decentralised Superchain"_s);
        line.resize(20, 16);
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&line);
        QCOMPARE(interface->role(), QAccessible::StaticText);
        QCOMPARE(interface->text(QAccessible::Name), line.text());
        QVERIFY(!interface->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    }

    void aParagraphTakesTheLinesThatItNeeds() {
        const QString text = u"no history yet · the relay starts a 24h series on its next runs"_s;
        Paragraph narrow(style(), 150, text);
        Paragraph wide(style(), 2000, text);
        QCOMPARE(wide.sizeHint().height(), 16);
        QVERIFY(narrow.sizeHint().height() >= 3 * 16);
        QCOMPARE(narrow.sizeHint().height() % 16, 0);
        const auto columns = inkedColumns(drawn(narrow, 200));
        QVERIFY(columns && columns->second <= 150);
        QCOMPARE(narrow.accessibleName(), text);
    }

    void aParagraphBreaksAWordThatIsTooLong() {
        Paragraph paragraph(style(), 150, u"in /a/path/"_s + QString(200, u'x'));
        QVERIFY(paragraph.sizeHint().height() >= 4 * 16);
        const auto columns = inkedColumns(drawn(paragraph, 400));
        QVERIFY(columns && columns->second <= 150);
    }
};

QTEST_MAIN(TextLineTest)
#include "TextLineTest.moc"
