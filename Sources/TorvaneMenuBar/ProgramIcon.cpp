#include "ProgramIcon.h"

#include "Views/SymbolTile.h"

#include <QPixmap>

namespace torvane {

QIcon programIcon() {
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128}) {
        SymbolTile tile(QStringLiteral("fuelpump.fill"), {side, side * 0.24, side * 0.6});
        QPixmap pixmap(tile.size());
        pixmap.fill(Qt::transparent);
        tile.render(&pixmap, {}, {}, QWidget::DrawChildren);
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace torvane
