#pragma once

#include <QWidget>

namespace torvane {

/// A horizontal hairline between two sections, half a device-independent pixel tall.
class Rule final : public QWidget {
    Q_OBJECT

public:
    /// `inset` is left free at either end.
    explicit Rule(int inset, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_inset;
};

} // namespace torvane
