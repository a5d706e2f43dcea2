#pragma once

#include "Design/DesignSystem.h"

#include <QWidget>

namespace torvane {

/// A horizontal hairline between two sections or rows, half a device-independent pixel tall.
class Rule final : public QWidget {
    Q_OBJECT

public:
    /// `inset` is left free at either end.
    explicit Rule(int inset, const DynamicColor& color = Palette::line2, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_inset;
    DynamicColor m_color;
};

} // namespace torvane
