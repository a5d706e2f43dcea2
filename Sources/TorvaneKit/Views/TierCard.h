#pragma once

#include "Model/GasLevel.h"
#include "Views/AccessiblePart.h"
#include "Views/TextRun.h"

#include <QWidget>

namespace torvane {

/// One fee tier on a card: its label in capitals, its figure with a second line below, and a dot in the level's colour.
class TierCard final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    explicit TierCard(QWidget* parent = nullptr);

    /// `gwei` is the formatted figure, `sub` the second line.
    void setTier(const QString& label, const QString& gwei, const QString& sub, GasLevel level);

    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }
    QString accessibleValue() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TextRun m_label;
    TextRun m_gwei;
    TextRun m_smallGwei;
    TextRun m_sub;
    GasLevel m_level = GasLevel::low;
};

} // namespace torvane
