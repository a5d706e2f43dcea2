#include "Views/SymbolTile.h"

#include "Design/DesignSystem.h"
#include "Design/Symbols.h"
#include "Views/Drawing.h"

#include <QPainter>

namespace torvane {

SymbolTile::SymbolTile(const QString& symbol, Sizes sizes, QWidget* parent)
    : QWidget(parent)
    , m_symbol(symbol)
    , m_sizes(sizes) {
    setFixedSize(sizes.side, sizes.side);
}

void SymbolTile::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    fillRoundedRect(painter, rect(), m_sizes.radius, Palette::accent);
    QRectF place(0, 0, m_sizes.symbol, m_sizes.symbol);
    place.moveCenter(QRectF(rect()).center());
    Symbols::paint(painter, place, m_symbol, Palette::accentInk);
}

} // namespace torvane
