#include "Views/HeadSymbol.h"

#include "Design/Symbols.h"

namespace torvane {

namespace {

constexpr int side = 30;
constexpr double radius = 9;
constexpr double symbolSize = 18;

void draw(QPainter& painter, const QRectF& tile, const QString& symbol) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(Palette::surface3));
    painter.drawRoundedRect(tile, radius, radius);
    QRectF place(0, 0, symbolSize, symbolSize);
    place.moveCenter(tile.center());
    Symbols::paint(painter, place, symbol, Palette::ink);
}

} // namespace

HeadSymbol::HeadSymbol(const QString& symbol, QWidget* parent)
    : QWidget(parent)
    , m_symbol(symbol) {
    setFixedSize(side, side);
}

void HeadSymbol::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    m_drawing.paint(painter, rect(), [this](QPainter& drawing, const QRectF& tile) { draw(drawing, tile, m_symbol); });
}

} // namespace torvane
