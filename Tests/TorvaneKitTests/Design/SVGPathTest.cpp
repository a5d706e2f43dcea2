#include "Design/SVGPath.h"

#include <QTest>

#include <cmath>

using namespace torvane;

namespace {

QString number(double value) {
    return QString::number(std::abs(value) < 1e-12 ? 0 : value, 'g', 7);
}

/// The elements as path data: "M0,0 L10,0 C1,1 2,2 3,3".
QString elements(const QPainterPath& path) {
    QString text;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        static const QMap<int, QString> letters{{QPainterPath::MoveToElement, QStringLiteral(" M")},
                                                {QPainterPath::LineToElement, QStringLiteral(" L")},
                                                {QPainterPath::CurveToElement, QStringLiteral(" C")},
                                                {QPainterPath::CurveToDataElement, QStringLiteral(" ")}};
        text += letters[element.type] + number(element.x) + QLatin1Char(',') + number(element.y);
    }
    return text.trimmed();
}

QString read(const char* text) {
    return elements(SVGPath::path(QString::fromUtf8(text)));
}

/// The same when a quadratic curve is what Qt makes of it.
QString withQuads(const QList<std::pair<QPointF, QPointF>>& quads) {
    QPainterPath path;
    path.moveTo(0, 0);
    for (const auto& [control, end] : quads)
        path.quadTo(control, end);
    return elements(path);
}

void row(const char* text, const char* expected) {
    QTest::newRow(text) << QByteArray(text) << QByteArray(expected);
}

} // namespace

class SVGPathTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textWithoutCommandsDrawsNothing() {
        QCOMPARE(SVGPath::path({}).elementCount(), 0);
        QCOMPARE(read(""), QString());
        QCOMPARE(read(" ,\t\r\n, "), QString());
    }

    void wellFormedTextIsDrawn_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("expected");

        // Moves and what follows them.
        row("M3 4", "M3,4");
        row("M0 0L10 0", "M0,0 L10,0");
        row("M0,0 10,0", "M0,0 L10,0");
        row("M1 1 2 2 3 3", "M1,1 L2,2 L3,3");
        row("m1 1 2 2 3 3", "M1,1 L3,3 L6,6");
        row("M1 1m2 2 3 3", "M3,3 L6,6");
        row("M1 1L2 2M5 5L6 6", "M1,1 L2,2 M5,5 L6,6");
        row("L5 6", "M0,0 L5,6"); // The first point is the origin until a move says otherwise.

        // Numbers.
        row("M.5.5", "M0.5,0.5");
        row("M-1-2", "M-1,-2");
        row("M+1+2", "M1,2");
        row("M-.5+.25", "M-0.5,0.25");
        row("M1e2 0", "M100,0");
        row("M1E+2 3e-1", "M100,0.3");
        row("M5.5.5", "M5.5,0.5");
        row("M5. 6.", "M5,6");
        row("M5..6", "M5,0.6");
        row("M5.e1 6", "M50,6");
        row("M1.5e1.5", "M15,0.5");
        row("M00 007", "M0,7");
        row("M1e-999 -1e-999", "M0,0"); // Too small for a double.
        row("M0e999 1", "M0,1");
        row("M0.1234567890123456789 12345678901234567890e-19", "M0.1234568,1.234568");
        row("M1e127 -1e127", "M1e+127,-1e+127");

        // Separators.
        row(" \t\r\n,M,,1\n2\t,L\r3,4 ", "M1,2 L3,4");
        row("M1 2,L3 4", "M1,2 L3,4");
        row("M1,2,3,4,", "M1,2 L3,4");

        // Lines.
        row("M1 2l3 4 5 6", "M1,2 L4,6 L9,12");
        row("M1 2H5 6", "M1,2 L5,2 L6,2");
        row("M1 2h5 6", "M1,2 L6,2 L12,2");
        row("M1 2V5 6", "M1,2 L1,5 L1,6");
        row("M1 2v5 6", "M1,2 L1,7 L1,13");

        // Cubic curves. The reflection of (5,6) about (7,8) is (9,10).
        row("M1 2C3 4 5 6 7 8", "M1,2 C3,4 5,6 7,8");
        row("M1 2c3 4 5 6 7 8", "M1,2 C4,6 6,8 8,10");
        row("M1 2c1 1 2 2 3 3 1 1 2 2 3 3", "M1,2 C2,3 3,4 4,5 C5,6 6,7 7,8");
        row("M1 2C3 4 5 6 7 8S1 1 0 0", "M1,2 C3,4 5,6 7,8 C9,10 1,1 0,0");
        row("M1 2C3 4 5 6 7 8s1 1 0 9", "M1,2 C3,4 5,6 7,8 C9,10 8,9 7,17");
        row("M1 2S3 4 5 6", "M1,2 C1,2 3,4 5,6");
        row("M1 2S3 4 5 6 1 1 0 0", "M1,2 C1,2 3,4 5,6 C7,8 1,1 0,0");

        // What keeps the control point of a cubic curve, and what forgets it.
        row("M1 2C3 4 5 6 7 8L7 9S1 1 0 0", "M1,2 C3,4 5,6 7,8 L7,9 C9,12 1,1 0,0");
        row("M1 2C3 4 5 6 7 8l0 1S1 1 0 0", "M1,2 C3,4 5,6 7,8 L7,9 C9,12 1,1 0,0");
        row("M1 2C3 4 5 6 7 8H9S1 1 0 0", "M1,2 C3,4 5,6 7,8 L9,8 C9,8 1,1 0,0");
        row("M1 2C3 4 5 6 7 8V9S1 1 0 0", "M1,2 C3,4 5,6 7,8 L7,9 C7,9 1,1 0,0");
        row("M1 2C3 4 5 6 7 8M7 8S1 1 0 0", "M1,2 C3,4 5,6 7,8 M7,8 C7,8 1,1 0,0");
        row("M1 2C3 4 5 6 7 8ZS1 1 0 0", "M1,2 C3,4 5,6 7,8 L1,2 M1,2 C1,2 1,1 0,0");
        row("M1 2C3 4 5 6 7 8A0 1 0 0 0 7 9S1 1 0 0", "M1,2 C3,4 5,6 7,8 L7,9 C7,9 1,1 0,0");
        row("M1 2C3 4 5 6 7 8A1 1 0 0 0 7 8S1 1 0 0", "M1,2 C3,4 5,6 7,8 C7,8 1,1 0,0");

        // Closing.
        row("M1 2L3 4L5 0Z", "M1,2 L3,4 L5,0 L1,2");
        row("M1 2l3 4L1 2z", "M1,2 L4,6 L1,2");
        row("M1 2L3 4zl1 1", "M1,2 L3,4 L1,2 M1,2 L2,3");
        row("M1 2L3 4zm1 1l1 1", "M1,2 L3,4 L1,2 M2,3 L3,4");
        row("M1 2L3 4zzL5 6", "M1,2 L3,4 L1,2 M1,2 L5,6");
        row("M1 2h1zv1z", "M1,2 L2,2 L1,2 M1,2 L1,3 L1,2");
        row("M1 2Zl1 1", "M1,2 L2,3");
        row("Zl1 1", "M0,0 L1,1");

        // Arcs that are none.
        row("M0 0 A 0 5 0 0 1 10 0", "M0,0 L10,0");
        row("M0 0 A 5 0 0 0 1 10 0", "M0,0 L10,0");
        row("M1 1a0 5 0 0 1 10 0", "M1,1 L11,1");
        row("M1 1A5 5 0 1 1 1 1", "M1,1");
        row("M1 1a5 5 0 1 1 0 0L2 2", "M1,1 L2,2");
        row("M1 1A0 0 0 0 0 1 1L2 2", "M1,1 L2,2");
    }

    void wellFormedTextIsDrawn() {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, expected);
        QCOMPARE(read(text.constData()), QString::fromLatin1(expected));
    }

    void quadraticCurvesAreDrawn() {
        QCOMPARE(read("M0 0Q5 5 10 0"), withQuads({{{5, 5}, {10, 0}}}));
        QCOMPARE(read("M0 0q5 5 10 0q5 5 10 0"), withQuads({{{5, 5}, {10, 0}}, {{15, 5}, {20, 0}}}));
        QCOMPARE(read("M0 0Q5 5 10 0T20 0"), withQuads({{{5, 5}, {10, 0}}, {{15, -5}, {20, 0}}}));
        QCOMPARE(read("M0 0Q5 5 10 0t10 0 10 0"),
                 withQuads({{{5, 5}, {10, 0}}, {{15, -5}, {20, 0}}, {{25, 5}, {30, 0}}}));
        QCOMPARE(read("M0 0T10 0"), withQuads({{{0, 0}, {10, 0}}}));
        QCOMPARE(read("M0 0T10 0 20 5"), withQuads({{{0, 0}, {10, 0}}, {{20, 0}, {20, 5}}}));
    }

    void groupsAfterTheFirstOfAQuadraticCurveAreSmooth() {
        QCOMPARE(read("M0 0 Q 5 5 10 0 20 0"), withQuads({{{5, 5}, {10, 0}}, {{15, -5}, {20, 0}}}));
        QCOMPARE(read("M0 0q5 5 10 0 10 0 10 0"), read("M0 0q5 5 10 0t10 0t10 0"));
        QCOMPARE(read("M0 0Q5 5 10 0 15 15 20 0"), read("M0 0Q5 5 10 0T15 15T20 0"));
        QCOMPARE(read("M0 0Q5 5 10 0 20"), QString());
    }

    void theControlOfAQuadraticCurveIsKeptByLinesAlone() {
        const QString forgotten = read("M0 0Q5 5 10 0M9 0T20 0");
        QCOMPARE(read("M0 0Q5 5 10 0M9 0Q9 0 20 0"), forgotten);
        QCOMPARE(read("M0 0Q5 5 10 0L9 0T20 0"), read("M0 0Q5 5 10 0L9 0Q13 -5 20 0"));
        QCOMPARE(read("M0 0Q5 5 10 0H9T20 0"), read("M0 0Q5 5 10 0L9 0M9 0Q9 0 20 0").remove(QStringLiteral(" M9,0")));
        QCOMPARE(read("M0 0Q5 5 10 0C1 1 2 2 9 0T20 0"), read("M0 0Q5 5 10 0C1 1 2 2 9 0Q9 0 20 0"));
        QCOMPARE(read("M0 0C1 1 2 2 9 0Q5 5 10 0S1 1 2 2"), read("M0 0C1 1 2 2 9 0Q5 5 10 0C10 0 1 1 2 2"));
        QCOMPARE(read("M0 0Q5 5 10 0zT20 0"), read("M0 0Q5 5 10 0zQ0 0 20 0"));
        QCOMPARE(read("M0 0Q5 5 10 0A5 5 0 0 0 9 9T20 0"), read("M0 0Q5 5 10 0A5 5 0 0 0 9 9Q9 9 20 0"));
    }

    void arcsAreDrawnAsCubicCurves() {
        // A half circle: two, by way of its top.
        const QPainterPath half = SVGPath::path(u"M0 0 A5 5 0 0 1 10 0");
        QCOMPARE(half.elementCount(), 7);
        QCOMPARE(QPointF(half.elementAt(3)), QPointF(5, -5));
        QCOMPARE(QPointF(half.elementAt(6)), QPointF(10, 0));
        QCOMPARE(QPointF(SVGPath::path(u"M0 0 A5 5 0 0 0 10 0").elementAt(3)), QPointF(5, 5));
        // A quarter: one, whichever way the coordinates are rounded.
        QCOMPARE(SVGPath::path(u"M12 2A10 10 0 0 0 2 12").elementCount(), 4);
        QCOMPARE(SVGPath::path(u"M.1 .1a.7.7 0 0 1 .7 .7").elementCount(), 4);
        QCOMPARE(read("M1 1a5 5 0 0 1 10 0 5 5 0 0 1 10 0"), read("M1 1A5 5 0 0 1 11 1A5 5 0 0 1 21 1"));
        QCOMPARE(read("M0 0A5 5 0 0 1 10 0L3 3"), read("M0 0A5 5 0 0 1 10 0") + QStringLiteral(" L3,3"));
    }

    void flagsAreNumbersLikeAnyOther() {
        const QString large = read("M0 0A5 5 0 1 1 5 5");
        const QString small = read("M0 0A5 5 0 0 0 5 5");
        QVERIFY(large != small);
        QCOMPARE(read("M0 0A5 5 0 2 -7 5 5"), large);
        QCOMPARE(read("M0 0A5 5 0 .5 1e-9 5 5"), large);
        QCOMPARE(read("M0 0A5 5 0 00 -0 5 5"), small);
        QCOMPARE(read("M0 0A5 5 0 0.0.0 5 5"), small);
        QCOMPARE(read("M0 0A5 5 0 00 5 5"), QString()); // One flag short.
        QCOMPARE(read("M0 0A5 5 0 015 5"), QString());
    }

    void malformedTextDrawsNothing_data() {
        QTest::addColumn<QByteArray>("text");
        for (const char* text : {"10 10",
                                 ",1",
                                 "M1e 0",
                                 "M1e+ 0",
                                 "M1e",
                                 "M. 1",
                                 "M- 1",
                                 "M+-1 1",
                                 "M--1 1",
                                 "M.e1 1",
                                 "M0 0L..5 1",
                                 "M",
                                 "M1",
                                 "M1,",
                                 "m 1 ",
                                 "M0 0L",
                                 "M0 0L1",
                                 "M0 0L1 2 3",
                                 "M0 0H",
                                 "M0 0V",
                                 "M0 0Hx",
                                 "M0 0C1 2 3 4 5",
                                 "M0 0C1 2 3 4 5 6 7",
                                 "M0 0S1 2 3",
                                 "M0 0Q1 2 3",
                                 "M0 0T1",
                                 "M0 0A1 2 3 4 5 6",
                                 "M0 0A1 1 0 0 1 5 5 6",
                                 "M0 0LM1 1",
                                 "M0 0L1M1 1",
                                 "M0 0x",
                                 "M0 0L1 1x",
                                 "M0 0L1 1,x",
                                 "x",
                                 "M0 0B1 1",
                                 "M0 0R1 1",
                                 "M0 0Z5",
                                 "M0 0L1 1z,5 5",
                                 "M0 0L1 1z 5 5 L6 6",
                                 "Z1",
                                 "M0 0;L1 1",
                                 "M0 0L1 1#",
                                 "M0x10 0",
                                 "Minf 0",
                                 "Mnan 0",
                                 "M1e999 0",
                                 "M0 -1e999",
                                 "M1e128 0",
                                 "M0 0h1e128",
                                 "M0 0h9e127h9e127",
                                 "M0 0h9e127 9e127",
                                 "M9e127 0m9e127 0",
                                 "M0 0C9e127 0 0 0 9e127 0s1 1 0 0 1 1 0 0",
                                 "M9e127 0Q-9e127 0 9e127 0T0 0",
                                 "M0 0A1e200 1e200 0 0 1 10 0",
                                 "M0 0A1e200 1 0 0 1 10 0",
                                 "M0 0A1 1e308 0 0 1 10 0",
                                 "M0 0A1e-310 1e-310 0 0 1 10 0",
                                 "M1e-320 0A1 1 0 0 1 0 0",
                                 "M9e127 0A9e127 9e127 0 1 1 0 0",
                                 "M0 0\xc3\xa9",
                                 "M0 0L1 1\xe2\x80\xaf",
                                 "M0\xc2\xa0\x30L1 1",
                                 "M0 0L\xd9\xa1 \xd9\xa1",
                                 "M0 0\xf0\x9f\x98\x80"})
            QTest::newRow(text) << QByteArray(text);
    }

    void malformedTextDrawsNothing() {
        QFETCH(QByteArray, text);
        QCOMPARE(SVGPath::path(QString::fromUtf8(text)).elementCount(), 0);
    }

    void aZeroCharacterIsNoEndOfTheText() {
        QCOMPARE(SVGPath::path(QStringView(u"M0 0L1 1\0", 9)).elementCount(), 0);
        QCOMPARE(SVGPath::path(QStringView(u"\0M0 0", 5)).elementCount(), 0);
        QCOMPARE(SVGPath::path(u"\ufeffM0 0L1 1").elementCount(), 0); // Nor is a byte order mark its beginning.
    }

    void halfACharacterIsMalformed() {
        const char16_t lone[] = {u'M', u'1', u' ', u'1', 0xd83d};
        QCOMPARE(SVGPath::path(QStringView(lone, 5)).elementCount(), 0);
        const char16_t lookalike[] = {u'M', u'1', u' ', u'1', u'L' + 0x100, u'1', u' ', u'1'};
        QCOMPARE(SVGPath::path(QStringView(lookalike, 8)).elementCount(), 0);
    }

    void everyPrefixIsWholeOrNothing() {
        const QString text = QStringLiteral("M1 2 3 4h5V-6c1 2 3 4 5 6S1 2 3 4Q1 2 3 4 5 6t7 8A9 8 7 0 1 5 4z");
        const QPainterPath whole = SVGPath::path(text);
        QCOMPARE(QPointF(whole.elementAt(0)), QPointF(1, 2));
        int drawn = 0;
        for (qsizetype length = 0; length <= text.size(); ++length) {
            const QPainterPath path = SVGPath::path(text.first(length));
            QVERIFY(path.elementCount() <= whole.elementCount());
            drawn += path.elementCount() > 0;
        }
        QVERIFY(drawn > 10);
        QVERIFY(drawn < text.size() / 2);
    }

    void longTextIsRead() {
        constexpr int groups = 300'000;
        const QString lines = QStringLiteral("M0 0h") + QStringLiteral("1 ").repeated(groups);
        QCOMPARE(SVGPath::path(lines).currentPosition(), QPointF(groups, 0));
        QCOMPARE(SVGPath::path(QString(groups, u'z')).elementCount(), SVGPath::path(u"z").elementCount());
        QCOMPARE(SVGPath::path(QStringLiteral("M0 0L") + QString(groups, u'1') + QStringLiteral(" 1")).elementCount(),
                 0);
        const QString places = QStringLiteral("M.") + QString(groups, u'3') + QStringLiteral(" 1");
        QCOMPARE(elements(SVGPath::path(places)), QStringLiteral("M0.3333333,1"));
        QCOMPARE(read("M1e-99999999999999999999 0"), QStringLiteral("M0,0"));
        QCOMPARE(read("M1e99999999999999999999 0"), QString());
    }
};

QTEST_APPLESS_MAIN(SVGPathTest)
#include "SVGPathTest.moc"
