#pragma once

#include "Design/ChainMarks.h"

#include <QColor>
#include <QString>
#include <QWidget>

class QPainter;

namespace torvane {

/// A network's mark in its own colours: a tile with the emblem, or with the first letter of a network that has none.
/// The name itself stands beside it wherever it is shown, so that it says nothing to a screen reader.
class ChainIcon final : public QWidget {
    Q_OBJECT

public:
    /// The key of a brand whose emblem is built in ("" for any other), and the colour of the tile.
    struct Info {
        QString key;
        QColor color;
    };

    /// Brands are known in upper and lower case; the colour of any other name is made from its bytes (djb2's hash as
    /// the hue), so that it is the same everywhere and each time.
    static Info info(const QString& name);

    /// The emblem alone, in white upon `bg`, in a context that is scaled to the box of 24 by 24 units.
    static void draw(const QString& key, const QString& name, QPainter& ctx, const QColor& bg);

    /// Tile and emblem in the largest square in the middle of the rectangle.
    static void paint(QPainter& painter, const QRectF& rectangle, const QString& name);
    static void paint(QPainter& painter, const QRectF& rectangle, const ChainMark& mark);

    /// `size` is the side in device-independent pixels.
    ChainIcon(const QString& name, double size, QWidget* parent = nullptr);

    void setName(const QString& name);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_name;
    double m_size;
};

} // namespace torvane
