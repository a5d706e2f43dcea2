#pragma once

#include "Model/AppSettings.h"
#include "Model/Snapshot.h"

#include <QWidget>

#include <optional>

class QBoxLayout;

namespace torvane {

class L2Row;
class Sparkline;
class TextLine;

/// The rows of Layer 2 networks, each with a small chart of its history where it has one.
class L2List final : public QWidget {
    Q_OBJECT

public:
    explicit L2List(QWidget* parent = nullptr);

    /// Shows these networks, one row each, in this order; of very many the first, and how many more there are. Rows are
    /// kept and changed in place.
    void setEntries(const QList<L2Entry>& entries, Denomination denom);

    /// The network whose row is under the pointer.
    std::optional<QString> hoveredL2() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Row {
        L2Row* row;
        Sparkline* inlineSpark;
    };

    void setRowCount(qsizetype count);
    void removeLastRow();
    void placeSpark(const Row& row) const;
    void fill(const Row& row, const L2Entry& entry, Denomination denom) const;

    QBoxLayout* m_layout;
    QList<Row> m_rows;
    TextLine* m_more;
};

} // namespace torvane
