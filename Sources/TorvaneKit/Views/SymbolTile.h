#pragma once

#include "Design/DesignSystem.h"

#include <QWidget>

namespace torvane {

/// A symbol upon a rounded square, in the accent colour where no other is given.
class SymbolTile final : public QWidget {
    Q_OBJECT

public:
    /// In device-independent pixels.
    struct Sizes {
        int side;
        double radius;
        double symbol;
    };

    struct Colors {
        DynamicColor tile = Palette::accent;
        DynamicColor symbol = Palette::accentInk;
    };

    SymbolTile(const QString& symbol, Sizes sizes, QWidget* parent = nullptr);
    SymbolTile(const QString& symbol, Sizes sizes, const Colors& colors, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
    Sizes m_sizes;
    Colors m_colors;
};

} // namespace torvane
