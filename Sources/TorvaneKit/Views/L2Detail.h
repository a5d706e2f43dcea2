#pragma once

#include "Model/ChartHistory.h"
#include "Views/AccessiblePart.h"
#include "Views/NetworkLabel.h"

#include <QWidget>

namespace torvane {

class ChartView;
class FigureLine;
struct Figure;

/// One network on a card of its own: its mark, name and status, its figure, and its history as a chart.
class L2Detail final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    explicit L2Detail(QWidget* parent = nullptr);

    void setNetwork(const L2Entry& entry, const Figure& figure);

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    double labelRoom() const;

    NetworkLabel m_label;
    QString m_status;
    FigureLine* m_figure;
    ChartView* m_chart;
};

} // namespace torvane
