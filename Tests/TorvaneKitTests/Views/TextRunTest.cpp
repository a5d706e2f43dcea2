#include "Views/TextRun.h"

#include "Design/DesignSystem.h"

#include <QImage>
#include <QtTest>

using namespace torvane;

namespace {

TextRun run(const QString& text, const QFont& font) {
    TextRun made(font);
    made.setText(text);
    return made;
}

QImage drawn(const TextRun& text, double room) {
    QImage image(200, 30, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    text.draw(painter, {5, 20}, room);
    return image;
}

} // namespace

/// Texts that were shaped before are not shaped again: that may not show.
class TextRunTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSameTextLooksTheSameInEachLine() {
        const TextRun first = run(QStringLiteral("12.4 gwei"), Fonts::sans(12, QFont::Normal));
        const TextRun second = run(QStringLiteral("12.4 gwei"), Fonts::sans(12, QFont::Normal));
        QVERIFY(first.width() > 0);
        QCOMPARE(second.width(), first.width());
        QCOMPARE(drawn(second, 190), drawn(first, 190));
    }

    void theSameTextInAnotherFontIsAnother() {
        const QString text = QStringLiteral("Arbitrum");
        const double width = run(text, Fonts::sans(12, QFont::Normal)).width();
        QVERIFY(run(text, Fonts::sans(16, QFont::Normal)).width() > width);
        QVERIFY(run(text, Fonts::sans(12, QFont::Bold)).width() > width);
        QCOMPARE(run(text, Fonts::sans(12, QFont::Normal)).width(), width);
    }

    void whatIsCutOffInOneLineIsWholeInAnother() {
        const QFont font = Fonts::sans(12, QFont::Normal);
        const TextRun cut = run(QStringLiteral("A network with a long name"), font);
        const QImage whole = drawn(cut, 190);
        QVERIFY(drawn(cut, 60) != whole);
        QCOMPARE(drawn(run(QStringLiteral("A network with a long name"), font), 190), whole);
    }

    void anEndlessTextIsCutBetweenCharacters() {
        const QString longest(TextRun::mostDrawn, QLatin1Char('a'));
        QCOMPARE(TextRun::cut(longest), longest);
        QCOMPARE(TextRun::cut(longest + QLatin1Char('a')), longest + QStringLiteral("…"));
        const QString before = longest.chopped(1);
        QCOMPARE(TextRun::cut(before + QStringLiteral("😀")), before + QStringLiteral("…"));
    }

    void manyTextsPushOutOldOnesAndAllStayRight() {
        const QFont font = Fonts::mono(12, QFont::Normal);
        const double digit = run(QStringLiteral("1234"), font).width();
        for (int number = 1000; number < 2000; ++number)
            QCOMPARE(run(QString::fromLatin1(QByteArray::number(number)), font).width(), digit);
    }
};

QTEST_MAIN(TextRunTest)

#include "TextRunTest.moc"
