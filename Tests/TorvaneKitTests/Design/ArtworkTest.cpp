#include "Design/Artwork.h"

#include "Design/ChainGlyph.h"
#include "Design/ChainIcon.h"
#include "Design/ChainMarks.h"
#include "Design/ChainMarksMono.h"
#include "TorvaneKitTests/Design/Drawn.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

constexpr int badgeSide = 15;

const QRectF box(0, 0, Artwork::boxSide, Artwork::boxSide);

QImage coloredMark(const QString& name) {
    return drawn(badgeSide,
                 [&](QPainter& painter) { ChainIcon::paint(painter, QRectF(0, 0, badgeSide, badgeSide), name); });
}

QImage glyph(const QString& name) {
    return drawn(badgeSide, [&](QPainter& painter) {
        ChainGlyph::paint(painter, QRectF(0, 0, badgeSide, badgeSide), name, Qt::black);
    });
}

QStringList networks() {
    QStringList names = ChainMarksMono::byName().keys();
    names.sort();
    return names;
}

void addPairs() {
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    const QStringList names = networks();
    for (qsizetype i = 0; i < names.size(); ++i) {
        for (qsizetype j = i + 1; j < names.size(); ++j)
            QTest::addRow("%s, %s", qPrintable(names[i]), qPrintable(names[j])) << names[i] << names[j];
    }
}

} // namespace

class ArtworkTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyPathIsReadAndStaysInItsBox_data() {
        QTest::addColumn<QString>("path");
        for (const auto& [name, mark] : ChainMarks::byName().asKeyValueRange()) {
            for (qsizetype i = 0; i < mark.shapes.size(); ++i)
                QTest::addRow("%s, %d", qPrintable(name), static_cast<int>(i)) << mark.shapes[i].path;
        }
        for (const auto& [name, paths] : ChainMarksMono::byName().asKeyValueRange()) {
            for (qsizetype i = 0; i < paths.size(); ++i)
                QTest::addRow("%s in one colour, %d", qPrintable(name), static_cast<int>(i)) << paths[i];
        }
    }

    void everyPathIsReadAndStaysInItsBox() {
        QFETCH(QString, path);
        QVERIFY(!Artwork::path(path).isEmpty());
        QVERIFY(box.contains(Artwork::path(path).boundingRect()));
    }

    // The box lies in the middle of a larger canvas.
    void everyEmblemStaysInItsBox() {
        for (const QString& name : networks()) {
            const QImage image = drawn(72, [&name](QPainter& painter) {
                painter.translate(24, 24);
                ChainIcon::draw(ChainIcon::info(name).key, name, painter, Qt::black);
            });
            const QImage inside = image.copy(24, 24, 24, 24);
            const auto isDrawn = [](QRgb pixel) { return pixel != 0; };
            QVERIFY2(countPixels(inside, isDrawn) > 80, qPrintable(name));
            QCOMPARE(countPixels(image, isDrawn), countPixels(inside, isDrawn));
        }
    }

    void emblemsStandInTheMiddle_data() {
        QTest::addColumn<QString>("name");
        for (const QString& name : networks())
            QTest::newRow(qPrintable(name)) << name;
    }

    void emblemsStandInTheMiddle() {
        QFETCH(QString, name);
        QRectF bounds;
        for (const QString& path : ChainMarksMono::byName().value(name))
            bounds |= Artwork::path(path).boundingRect();
        const QPointF offset = bounds.center() - box.center();
        QVERIFY2(std::abs(offset.x()) <= 0.6 && std::abs(offset.y()) <= 1.1,
                 qPrintable(u"%1 %2"_s.arg(offset.x()).arg(offset.y())));
        QVERIFY(std::max(bounds.width(), bounds.height()) >= 16);
    }

    void coloredMarksAreToldApartAtTheBadgesSize_data() { addPairs(); }

    void coloredMarksAreToldApartAtTheBadgesSize() {
        QFETCH(QString, left);
        QFETCH(QString, right);
        const int difference = visibleDifference(coloredMark(left), coloredMark(right));
        QVERIFY2(difference >= 35, qPrintable(QString::number(difference)));
    }

    void glyphsAreToldApartAtTheBadgesSize_data() { addPairs(); }

    void glyphsAreToldApartAtTheBadgesSize() {
        QFETCH(QString, left);
        QFETCH(QString, right);
        const int difference = visibleDifference(glyph(left), glyph(right));
        QVERIFY2(difference >= 35, qPrintable(QString::number(difference)));
    }

    void holesAreOpenByEitherRule() {
        for (const QString& name : networks()) {
            for (const QString& path : ChainMarksMono::byName().value(name)) {
                const auto filled = [&path](Qt::FillRule rule) {
                    return drawn(24,
                                 [&](QPainter& painter) { painter.fillPath(Artwork::path(path, rule), Qt::black); });
                };
                QCOMPARE(filled(Qt::WindingFill), filled(Qt::OddEvenFill));
            }
        }
    }

    void aPathHasTheRuleThatIsAskedFor() {
        const QString data = u"M1 2L3 4L5 2Z"_s;
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(Artwork::path(data).fillRule(), Qt::WindingFill);
            QCOMPARE(Artwork::path(data, Qt::OddEvenFill).fillRule(), Qt::OddEvenFill);
            QCOMPARE(Artwork::path(data).elementCount(), 4);
            QCOMPARE(Artwork::path(data, Qt::OddEvenFill).elementCount(), 4);
        }
    }

    void pathsThatAreNoneStayEmpty() {
        for (const QString& data : {QString(), u"10 10"_s, u"M1 2L3"_s})
            QVERIFY(Artwork::path(data).isEmpty() && Artwork::path(data).isEmpty());
    }
};

QTEST_MAIN(ArtworkTest)
#include "ArtworkTest.moc"
