#include "Views/SymbolTile.h"

#include "Design/Symbols.h"
#include "Views/Drawing.h"

#include <QPainter>

namespace torvane {

SymbolTile::SymbolTile(const QString& symbol, Sizes sizes, QWidget* parent)
    : SymbolTile(symbol, sizes, Colors(), parent) {}

SymbolTile::SymbolTile(const QString& symbol, Sizes sizes, const Colors& colors, QWidget* parent)
    : QWidget(parent)
    , m_symbol(symbol)
    , m_sizes(sizes)
    , m_colors(colors) {
    setFixedSize(sizes.side, sizes.side);
}

void SymbolTile::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    fillRoundedRect(painter, rect(), m_sizes.radius, m_colors.tile);
    QRectF place(0, 0, m_sizes.symbol, m_sizes.symbol);
    place.moveCenter(QRectF(rect()).center());
    Symbols::paint(painter, place, m_symbol, m_colors.symbol);
}

} // namespace torvane
