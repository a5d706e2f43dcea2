#include "Badge/BadgeDrawing.h"

#include <QFontDatabase>
#include <QPainter>
#include <QSvgRenderer>
#include <QTest>
#include <QXmlStreamReader>

#include <array>
#include <cmath>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr std::array sizes{16, 22, 24, 32, 48, 64, 66};

const BadgeInk white{Qt::white, {}};
const BadgeInk plated{QColor(0xec, 0xeb, 0xe7), QColor(0x1e, 0x1e, 0x1c)};

BadgePicture picture(const QString& figure, bool isColored = false) {
    return {{u"Ethereum"_s, MenuBarLabel::markSize, {}, MenuBarLabel::dotSize, isColored}, {}, true, figure};
}

BadgePicture withDot(BadgePicture picture) {
    picture.icon.dotColor = Qt::green;
    return picture;
}

FigureOutline outlineOf(const QString& figure) {
    return figureOutline(figure, QFontDatabase::systemFont(QFontDatabase::GeneralFont));
}

/// How many pixels of the rectangle are more this colour than not.
int pixelsOf(const QImage& image, const QRect& rectangle, const QColor& color) {
    int count = 0;
    for (int y = rectangle.top(); y <= rectangle.bottom(); ++y) {
        for (int x = rectangle.left(); x <= rectangle.right(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const bool isSimilar = std::abs(pixel.red() - color.red()) < 60 &&
                                   std::abs(pixel.green() - color.green()) < 60 &&
                                   std::abs(pixel.blue() - color.blue()) < 60;
            count += pixel.alpha() > 127 && isSimilar;
        }
    }
    return count;
}

/// The columns in which something is drawn.
QPair<int, int> columns(const QImage& image) {
    QPair<int, int> found{image.width(), -1};
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y).alpha() > 0)
                found = {std::min(found.first, x), x};
        }
    }
    return found;
}

int differentPixels(const QImage& a, const QImage& b) {
    int count = 0;
    for (int i = 0; i < a.width() * a.height(); ++i) {
        const QPoint at(i % a.width(), i / a.width());
        count += std::abs(a.pixelColor(at).alpha() - b.pixelColor(at).alpha()) > 40;
    }
    return count;
}

} // namespace

class BadgeDrawingTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shortFiguresStandBelowTheMarkAtEverySize_data() {
        QTest::addColumn<QString>("figure");
        for (const char* figure : {"9", "148", "12.3", "0.12"})
            QTest::newRow(figure) << QString::fromLatin1(figure);
        QTest::newRow("a dash") << u"—"_s;
    }

    void shortFiguresStandBelowTheMarkAtEverySize() {
        QFETCH(QString, figure);
        for (const int size : sizes) {
            for (const bool hasPlate : {false, true}) {
                const SquareLayout layout = squareLayout(outlineOf(figure), size, hasPlate);
                const QRectF bounds = layout.figure.boundingRect();
                QVERIFY(!layout.figure.isEmpty());
                QVERIFY(bounds.left() > -0.01 && bounds.right() < size + 0.01 && bounds.bottom() < size + 0.5);
                QVERIFY(std::abs(bounds.center().x() - size / 2.0) < 0.01);
                // The mark itself, without its padding, ends above the figure's digits.
                const double padding = layout.mark.height() * 1.5 / 18;
                QVERIFY(layout.mark.y() + layout.mark.height() - padding <= size - figureHeight(size));
                QVERIFY(layout.mark.y() + padding > -0.6);
                QVERIFY(layout.mark.height() >= 7);
            }
            const QImage image = squareBadge(picture(figure), white, size);
            QCOMPARE(image.size(), QSize(size, size));
            QVERIFY(pixelsOf(image, QRect(0, size - figureHeight(size), size, figureHeight(size)), Qt::white) > 0);
            QVERIFY(pixelsOf(image, QRect(0, 0, size, size - figureHeight(size)), Qt::white) > 0);
        }
    }

    void whatCannotBeReadLeavesTheMarkAlone_data() {
        QTest::addColumn<QString>("figure");
        QTest::newRow("five characters") << u"0.004"_s;
        QTest::newRow("a figure with a unit") << u"12.34 gwei"_s;
        QTest::newRow("a text without end") << QString(100000, u'8');
        QTest::newRow("what cannot be drawn") << QString(QChar(0xd800)) + QChar(0) + u'\n';
        QTest::newRow("blanks") << u"   "_s;
    }

    void whatCannotBeReadLeavesTheMarkAlone() {
        QFETCH(QString, figure);
        for (const int size : sizes) {
            QCOMPARE(squareBadge(picture(figure), white, size), squareBadge(picture({}), white, size));
            QCOMPARE(squareLayout(outlineOf(figure), size, false).mark, QRect(0, 0, size, size));
        }
    }

    void digitsStandOnWholePixels() {
        for (const int size : sizes) {
            const QRectF seven = placed(outlineOf(u"7"_s), size, 0).boundingRect();
            QCOMPARE(std::round(seven.bottom() * 100) / 100, double(size));
            QCOMPARE(std::round(seven.height() * 100) / 100, double(figureHeight(size)));
        }
    }

    void aBadgeInOneColourIsDrawnInTheInkAlone() {
        for (const QString& figure : {QString(), u"12.3"_s}) {
            const QImage image = squareBadge(picture(figure), {Qt::red, {}}, 48);
            for (int i = 0; i < 48 * 48; ++i) {
                const QColor pixel = image.pixelColor(i % 48, i / 48);
                QVERIFY(pixel.alpha() == 0 || (pixel.green() == 0 && pixel.blue() == 0 && pixel.red() > 0));
            }
        }
    }

    void theDotInOneColourTakesTheInkAndStandsFree() {
        BadgePicture dotted = withDot(picture({}));
        const QImage image = squareBadge(dotted, white, 72);
        QCOMPARE(image.pixelColor(57, 57), QColor(Qt::white)); // Its middle: 14.25 of 18 points.
        QCOMPARE(image.pixelColor(57 + 12, 57).alpha(), 0);    // The ring: between 2.25 and 3.55 points away.
        dotted.icon.colorIcon = true;
        QCOMPARE(squareBadge(dotted, white, 72).pixelColor(57, 57), QColor(Qt::green));
        QCOMPARE(squareBadge(dotted, white, 72).pixelColor(57 - 12, 57).alpha(), 0); // Cut out of the tile.
    }

    void aPlateLiesBehindWhatHasNoColourOfItsOwn() {
        QCOMPARE(squareBadge(picture(u"12.3"_s), plated, 22).pixelColor(11, 0), *plated.plate);
        QVERIFY(squareBadge(picture(u"12.3"_s), plated, 22).pixelColor(0, 0).alpha() < 255);
        QCOMPARE(wideBadge(picture(u"12.3"_s), plated, 3).pixelColor(30, 0), *plated.plate);
        QCOMPARE(squareBadge(picture(u"12.3"_s, true), plated, 22).pixelColor(11, 0), *plated.plate);
        // A tile is readable on any panel.
        QCOMPARE(squareBadge(picture({}, true), plated, 22), squareBadge(picture({}, true), white, 22));
        QCOMPARE(wideBadge(picture({}, true), plated, 3), wideBadge(picture({}, true), white, 3));
    }

    void theWideBadgeHasTheFigureBesideTheMark_data() {
        QTest::addColumn<double>("scale");
        QTest::addColumn<int>("height");
        QTest::newRow("1") << 1.0 << 18;
        QTest::newRow("1.5") << 1.5 << 27;
        QTest::newRow("2") << 2.0 << 36;
        QTest::newRow("3") << 3.0 << 54;
    }

    void theWideBadgeHasTheFigureBesideTheMark() {
        QFETCH(double, scale);
        QFETCH(int, height);
        const QImage alone = wideBadge(picture({}), white, scale);
        QCOMPARE(alone.size(), QSize(height, height));
        const QImage wide = wideBadge(picture(u"12.3"_s), white, scale);
        QCOMPARE(wide.height(), height);
        QCOMPARE(wide.copy(alone.rect()), alone);
        const QRect besides(height, 0, wide.width() - height, height);
        QVERIFY(pixelsOf(wide, besides, Qt::white) > 10);
        QVERIFY(columns(wide).second < wide.width()); // Nothing is cut off:
        QVERIFY(columns(wide).second > wide.width() - 5 * scale);
        QVERIFY(wideBadge(picture(u"0.00012 gwei"_s), white, scale).width() > 2 * wide.width());
        QCOMPARE(wideBadge(picture(u"99.9"_s), white, scale).width(), wide.width()); // It does not jump about.
    }

    void aFigureTooLongForAnyPanelIsLeftOut() {
        const QString longest(24, u'9');
        for (const BadgeInk& ink : {white, plated}) {
            QVERIFY(wideBadgeSize(picture(longest), ink, 3).width() > wideBadgeSize(picture({}), ink, 3).width());
            QCOMPARE(wideBadge(picture(longest + u'9'), ink, 3), wideBadge(picture({}), ink, 3));
            QCOMPARE(wideBadgeSize(picture(QString(301, u'9')), ink, 3), wideBadgeSize(picture({}), ink, 3));
        }
    }

    void otherFiguresLookDifferent() {
        for (const int size : sizes) {
            QVERIFY(squareBadge(picture(u"12.3"_s), white, size) != squareBadge(picture(u"12.8"_s), white, size));
            QVERIFY(squareBadge(picture(u"148"_s), white, size) != squareBadge(picture({}), white, size));
            QCOMPARE(squareBadge(picture(u"148"_s), white, size), squareBadge(picture(u"148"_s), white, size));
        }
    }

    void whereTheMarkCannotBeDrawnItsTagStands() {
        BadgePicture sizeless = picture({});
        sizeless.icon.size = 0;
        QCOMPARE(columns(squareBadge(sizeless, white, 64)).second, -1); // No tag, nothing at all.
        sizeless.tag = u"ARB"_s;
        QVERIFY(pixelsOf(squareBadge(sizeless, white, 64), QRect(0, 0, 64, 64), Qt::white) > 50);
    }

    void theSymbolicBadgeHasBothMarkings() {
        const QByteArray svg = symbolicBadge(picture(u"12.3"_s), QColor(1, 2, 3));
        QXmlStreamReader xml(svg);
        int paths = 0;
        QString style;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (xml.name() == u"path") {
                ++paths;
                QCOMPARE(xml.attributes().value("class"_L1), u"ColorScheme-Text"_s);
                QCOMPARE(xml.attributes().value("fill"_L1), u"currentColor"_s);
            } else if (xml.name() == u"style") {
                QCOMPARE(xml.attributes().value("id"_L1), u"current-color-scheme"_s);
                style = xml.readElementText();
            }
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(paths, 2); // The mark and the figure.
        QCOMPARE(style, u".ColorScheme-Text{color:#010203}"_s);
        QVERIFY(symbolicBadge(picture(u"12.4"_s), Qt::white) != symbolicBadge(picture(u"12.3"_s), Qt::white));
    }

    void theSymbolicMarkIsTheDrawnOne() {
        BadgePicture unknown = withDot(picture({}));
        unknown.icon.chain = u"Nowhere"_s;
        for (const BadgePicture& each : {picture({}), withDot(picture({})), unknown}) {
            const QImage drawn = squareBadge(each, white, 72);
            QSvgRenderer svg(symbolicBadge(each, Qt::white).replace("currentColor", "white"));
            QVERIFY(svg.isValid());
            QImage fromFile(72, 72, QImage::Format_ARGB32_Premultiplied);
            fromFile.fill(Qt::transparent);
            QPainter painter(&fromFile);
            svg.render(&painter);
            painter.end();
            QVERIFY(differentPixels(drawn, fromFile) < 72); // Some at the smooth edges.
            QVERIFY(differentPixels(drawn, squareBadge(picture(u"9"_s), white, 72)) > 500);
        }
    }
};

QTEST_MAIN(BadgeDrawingTest)
#include "BadgeDrawingTest.moc"
