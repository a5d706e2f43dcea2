#include "Design/Symbols.h"

#include <QFile>
#include <QTest>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

struct IconFile {
    QString error = u"cannot be read"_s;
    QStringList paths;
    QStringList viewBoxes;
    QStringList foreign; ///< what would be fetched from elsewhere, or run
};

IconFile read(const QString& name) {
    QFile file(QFINDTESTDATA(QLatin1StringView("../../../Packaging/icons/") + name));
    IconFile icon;
    if (!file.open(QIODevice::ReadOnly))
        return icon;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == u"path")
            icon.paths << xml.attributes().value("d"_L1).toString();
        if (xml.name() == u"svg")
            icon.viewBoxes << xml.attributes().value("viewBox"_L1).toString();
        if (xml.name() == u"image" || xml.name() == u"script" || xml.name() == u"text")
            icon.foreign << xml.name().toString();
    }
    icon.error = xml.errorString();
    return icon;
}

} // namespace

/// The program's icon in Packaging/icons, which desktops draw themselves.
class IconFilesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theIconShowsThePumpOfTheWindows_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("viewBox");
        QTest::newRow("in colour") << u"org.velisk.Torvane.svg"_s << u"0 0 128 128"_s;
        QTest::newRow("symbolic") << u"org.velisk.Torvane-symbolic.svg"_s << u"0 0 24 24"_s;
    }

    void theIconShowsThePumpOfTheWindows() {
        QFETCH(QString, name);
        QFETCH(QString, viewBox);
        const IconFile icon = read(name);
        QCOMPARE(icon.error, QString());
        QCOMPARE(icon.viewBoxes, QStringList{viewBox});
        QCOMPARE(icon.paths, QStringList{Symbols::byName().value(u"fuelpump.fill"_s).filled});
        QCOMPARE(icon.foreign, QStringList());
    }
};

QTEST_GUILESS_MAIN(IconFilesTest)
#include "IconFilesTest.moc"
