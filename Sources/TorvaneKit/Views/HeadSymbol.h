#pragma once

#include "Views/CachedDrawing.h"

#include <QWidget>

namespace torvane {

/// A symbol on a rounded tile of 30 by 30 device-independent pixels; it decorates and says nothing.
class HeadSymbol final : public QWidget {
    Q_OBJECT

public:
    /// `symbol` as Symbols knows it.
    explicit HeadSymbol(const QString& symbol, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
    CachedDrawing m_drawing;
};

} // namespace torvane
