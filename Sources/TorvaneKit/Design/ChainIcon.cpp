#include "Design/ChainIcon.h"

#include "Design/Artwork.h"
#include "Design/ChainArtwork.h"
#include "Design/ChainMarks.h"
#include "Design/ChainMarksMono.h"
#include "Design/InitialLetter.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// A part of a built-in emblem: as much white as `white` says, 0 to 1, the rest the tile's colour.
struct Facet {
    QStringView path;
    float white;
};

// The stone's outline lies under its facets, so that no seam between them shows the tile.
constexpr std::array ethereumFacets{
    Facet{ChainArtwork::ethereumAbove, 0.60F},  Facet{u"M5.9 11.9L12 9.3V15.5Z", 0.82F},
    Facet{u"M12 2.1L18.1 11.9L12 9.3Z", 0.78F}, Facet{u"M12 2.1V9.3L5.9 11.9Z", 1},
    Facet{ChainArtwork::ethereumBelow, 0.78F},  Facet{u"M5.9 13.9L12 17.5V21.9Z", 1},
};
constexpr std::array arbitrumFacets{Facet{ChainArtwork::arbitrum, 1}};
constexpr std::array optimismFacets{Facet{ChainArtwork::optimism, 1}};
constexpr std::array baseFacets{Facet{ChainArtwork::base, 1}};

struct Brand {
    QStringView key;
    QColor color;
    std::span<const Facet> facets;
};

constexpr std::array brands{
    Brand{u"ethereum", {98, 126, 234}, ethereumFacets},
    Brand{u"arbitrum", {27, 74, 221}, arbitrumFacets},
    Brand{u"optimism", {255, 4, 32}, optimismFacets},
    Brand{u"base", {0, 82, 255}, baseFacets},
};

const Brand* findBrand(const QString& key) {
    const auto brand =
        std::find_if(brands.begin(), brands.end(), [&key](const Brand& each) { return each.key == key; });
    return brand == brands.end() ? nullptr : &*brand;
}

QColor generatedColor(const QString& name) {
    quint64 hash = 5381;
    for (const char byte : name.toUtf8())
        hash = hash * 33 + static_cast<unsigned char>(byte);
    const quint64 degrees = name.isEmpty() ? 341 : hash % 360;
    return QColor::fromHsvF(static_cast<float>(degrees) / 360, 0.65F, 0.65F).toRgb();
}

QColor whitened(const QColor& color, float white) {
    const auto channel = [white](float value) { return value + (1 - value) * white; };
    return QColor::fromRgbF(channel(color.redF()), channel(color.greenF()), channel(color.blueF()));
}

} // namespace

ChainIcon::Info ChainIcon::info(const QString& name) {
    if (const Brand* brand = findBrand(name.toLower()))
        return {brand->key.toString(), brand->color};
    return {QString(), generatedColor(name)};
}

void ChainIcon::draw(const QString& key, const QString& name, QPainter& ctx, const QColor& bg) {
    if (const Brand* brand = findBrand(key)) {
        for (const Facet& facet : brand->facets)
            ctx.fillPath(Artwork::path(facet.path.toString()), whitened(bg, facet.white));
        return;
    }
    const QStringList emblem = ChainMarksMono::byName().value(name);
    for (const QString& path : emblem)
        ctx.fillPath(Artwork::path(path), Qt::white);
    if (emblem.isEmpty())
        ctx.fillPath(InitialLetter::outline(InitialLetter::of(name)), Qt::white);
}

void ChainIcon::paint(QPainter& painter, const QRectF& rectangle, const QString& name) {
    const auto mark = ChainMarks::byName().constFind(name);
    if (mark != ChainMarks::byName().cend()) {
        paint(painter, rectangle, *mark);
        return;
    }
    Artwork::inBox(painter, rectangle, [&painter, &name] {
        const Info known = info(name);
        painter.fillPath(Artwork::tile(), known.color);
        draw(known.key, name, painter, known.color);
    });
}

void ChainIcon::paint(QPainter& painter, const QRectF& rectangle, const ChainMark& mark) {
    Artwork::inBox(painter, rectangle, [&painter, &mark] {
        painter.fillPath(Artwork::tile(), QColor::fromRgb(mark.background));
        for (const ChainMark::Shape& shape : mark.shapes) {
            const Qt::FillRule rule = shape.evenOdd ? Qt::OddEvenFill : Qt::WindingFill;
            painter.fillPath(Artwork::path(shape.path, rule), QColor::fromRgb(shape.fill));
        }
    });
}

ChainIcon::ChainIcon(const QString& name, double size, QWidget* parent)
    : QWidget(parent)
    , m_name(name)
    , m_size(size) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ChainIcon::setName(const QString& name) {
    if (name == m_name)
        return;
    m_name = name;
    update();
}

QSize ChainIcon::sizeHint() const {
    const int side = static_cast<int>(std::ceil(m_size));
    return {side, side};
}

void ChainIcon::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QRectF square(0, 0, m_size, m_size);
    square.moveCenter(QRectF(rect()).center());
    paint(painter, square, m_name);
}

} // namespace torvane
