#include "Design/InitialLetter.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace torvane;

class InitialLetterTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theLetterIsTheFirstThatAReaderSees_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("letter");
        QTest::newRow("nothing") << QString() << QString();
        QTest::newRow("blanks") << u" \t "_s << QString();
        QTest::newRow("lower case") << u"blast"_s << u"B"_s;
        QTest::newRow("upper case") << u"Blast"_s << u"B"_s;
        QTest::newRow("after blanks") << u"  mode"_s << u"M"_s;
        QTest::newRow("after a mark of direction") << u"\u200Fשלום"_s << u"ש"_s;
        QTest::newRow("after a byte order mark") << u"\uFEFFlinea"_s << u"L"_s;
        QTest::newRow("after a zero") << QString(QChar(0)) + u'x' << u"X"_s;
        QTest::newRow("nothing that is seen") << u" \u200B\u00AD\u202E"_s << QString();
        QTest::newRow("a digit") << u"0x"_s << u"0"_s;
        QTest::newRow("an umlaut in one") << u"ärger"_s << u"Ä"_s;
        QTest::newRow("an umlaut in two") << u"a\u0308rger"_s << u"A\u0308"_s;
        QTest::newRow("two marks") << u"e\u0323\u0302s"_s << u"E\u0323\u0302"_s;
        QTest::newRow("sharp s") << u"ßeta"_s << u"S"_s;
        QTest::newRow("a ligature") << u"ﬁeld"_s << u"F"_s;
        QTest::newRow("i, in any locale") << u"ink"_s << u"I"_s;
        QTest::newRow("without case") << u"龍池"_s << u"龍"_s;
        QTest::newRow("outside the basic plane") << u"𐐨b"_s << u"𐐀"_s;
        QTest::newRow("a family of three") << u"👨‍👩‍👧x"_s << u"👨‍👩‍👧"_s;
        QTest::newRow("a flag") << u"🇩🇪🇫🇷"_s << u"🇩🇪"_s;
        QTest::newRow("half a pair") << QString(QChar(0xD83E)) + u'x' << QString(QChar(0xD83E));
    }

    void theLetterIsTheFirstThatAReaderSees() {
        QFETCH(QString, name);
        QFETCH(QString, letter);
        QCOMPARE(InitialLetter::of(name), letter);
    }

    // Names come from outside: one such letter would take a second to cut out of its tile.
    void aLetterHasNoMoreMarksThanTextMayHave() {
        const QString letter = InitialLetter::of(u'z' + QString(5000, QChar(0x0301)));
        QVERIFY(letter.startsWith(u'Z') || letter.startsWith(u'Ź'));
        QVERIFY(letter.size() > 30 && letter.size() <= 64);
    }

    void anOutlineStandsInTheMiddle_data() {
        QTest::addColumn<QString>("letter");
        for (const char* letter : {"B", "I", "W", "Q", "0", "WWWWWW"})
            QTest::newRow(letter) << QString::fromLatin1(letter);
    }

    void anOutlineStandsInTheMiddle() {
        QFETCH(QString, letter);
        const QRectF bounds = InitialLetter::outline(letter).boundingRect();
        QVERIFY(!bounds.isEmpty());
        QVERIFY(QRectF(3, 3, 18, 18).contains(bounds));
        QVERIFY(std::abs(bounds.center().x() - 12) < 0.01);
        QVERIFY(std::abs(bounds.center().y() - 12) < 0.01);
    }

    // Capitals are about 0.7 of the em high.
    void aLetterIs13UnitsToTheEm() {
        const double height = InitialLetter::outline(u"H"_s).boundingRect().height();
        QVERIFY2(height > 8 && height < 11, qPrintable(QString::number(height)));
    }

    void nothingHasNoOutline() {
        QVERIFY(InitialLetter::outline(QString()).isEmpty());
        QVERIFY(InitialLetter::outline(u" "_s).isEmpty());
    }
};

QTEST_MAIN(InitialLetterTest)
#include "InitialLetterTest.moc"
