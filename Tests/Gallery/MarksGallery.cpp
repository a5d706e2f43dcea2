// Writes sheets of all marks and symbols: MarksGallery FOLDER. marks-LOOK-SCALEx.png has the marks in colour and in one
// colour at the sizes where they stand, LOOK being light or dark; marks-zoom-LOOK-1x.png has their smallest, enlarged
// pixel by pixel.

#include "Design/ChainGlyph.h"
#include "Design/ChainIcon.h"
#include "Design/DesignSystem.h"
#include "Design/Symbols.h"
#include "Gallery/Gallery.h"

#include <QImage>
#include <QPainter>

#include <array>
#include <functional>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

using Draw = std::function<void(QPainter&, const QRectF&, const QString&)>;

struct Row {
    QStringList names;
    int size;
    Draw draw;
};

constexpr int gap = 8;

const QStringList networks{u"Ethereum"_s,   u"Arbitrum"_s, u"Optimism"_s, u"Base"_s,     u"Robinhood Chain"_s,
                           u"zkSync Era"_s, u"Unichain"_s, u"Scroll"_s,   u"Linea"_s,    u"Starknet"_s,
                           u"Polygon"_s,    u"ärger"_s,    u"龍"_s,       u"Worldcoin"_s};

void drawIcon(QPainter& painter, const QRectF& square, const QString& name) {
    ChainIcon::paint(painter, square, name);
}

void drawGlyph(QPainter& painter, const QRectF& square, const QString& name) {
    ChainGlyph::paint(painter, square, name, Palette::ink);
}

void drawSymbol(QPainter& painter, const QRectF& square, const QString& name) {
    Symbols::paint(painter, square, name, Palette::ink);
}

QList<Row> rowsOf(std::initializer_list<int> sizes) {
    QStringList symbols = Symbols::byName().keys();
    symbols.sort();
    QList<Row> rows;
    for (const int size : sizes)
        rows << Row{networks, size, drawIcon} << Row{networks, size, drawGlyph} << Row{symbols, size, drawSymbol};
    return rows;
}

QSize extentOf(const QList<Row>& rows) {
    QSize extent(gap, gap);
    for (const Row& row : rows) {
        extent.setWidth(std::max(extent.width(), gap + static_cast<int>(row.names.size()) * (row.size + gap)));
        extent.rheight() += row.size + gap;
    }
    return extent;
}

QImage sheet(const QList<Row>& rows, int scale) {
    QImage image(extentOf(rows) * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Palette::surface);
    QPainter painter(&image);
    int y = gap;
    for (const Row& row : rows) {
        int x = gap;
        for (const QString& name : row.names) {
            row.draw(painter, QRectF(x, y, row.size, row.size), name);
            x += row.size + gap;
        }
        y += row.size + gap;
    }
    return image;
}

bool writeSheets(const QDir& folder, const QString& look) {
    bool ok = true;
    for (const int scale : {1, 2, 3})
        ok &= sheet(rowsOf({15, 24, 52}), scale).save(folder.filePath(u"marks-%1-%2x.png"_s.arg(look).arg(scale)));
    const QImage smallest = sheet(rowsOf({12, 15}), 1);
    QImage zoom = smallest.scaled(smallest.size() * 5);
    zoom.setText(u"Description"_s, u"The smallest, pixel by pixel"_s);
    return zoom.save(folder.filePath(u"marks-zoom-%1-1x.png"_s.arg(look))) && ok;
}

bool writeAll(const QDir& folder) {
    setCurrentAppearance(Appearance::light);
    const bool ok = writeSheets(folder, u"light"_s);
    setCurrentAppearance(Appearance::dark);
    return writeSheets(folder, u"dark"_s) && ok;
}

} // namespace

int main(int argc, char** argv) {
    return Gallery::run(argc, argv, "MarksGallery", writeAll);
}
