#pragma once

#include <QWidget>

namespace torvane {

/// A symbol upon a rounded square in the accent colour.
class SymbolTile final : public QWidget {
    Q_OBJECT

public:
    /// In device-independent pixels.
    struct Sizes {
        int side;
        double radius;
        double symbol;
    };

    SymbolTile(const QString& symbol, Sizes sizes, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
    Sizes m_sizes;
};

} // namespace torvane
