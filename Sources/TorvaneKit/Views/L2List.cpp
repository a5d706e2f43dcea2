#include "Views/L2List.h"

#include "Model/ChartHistory.h"
#include "Views/Composition.h"
#include "Views/L2Row.h"
#include "Views/PopoverText.h"
#include "Views/ShownNetworks.h"
#include "Views/Sparkline.h"
#include "Views/TextLine.h"

#include <algorithm>
#include <memory>

namespace torvane {

namespace {

constexpr int margin = 14;
constexpr int moreHeight = 24;

} // namespace

L2List::L2List(QWidget* parent)
    : QWidget(parent)
    , m_layout(column())
    , m_more(new TextLine({Fonts::sans(10.5, QFont::Medium), Palette::ink3, moreHeight})) {
    setLayout(column(m_layout, padded({margin, 0, margin, 0}, row(m_more))));
}

void L2List::setEntries(const QList<L2Entry>& entries, Denomination denom) {
    setRowCount(std::min(entries.size(), mostShownNetworks));
    for (qsizetype i = 0; i < m_rows.size(); ++i)
        fill(m_rows[i], entries[i], denom);
    const QString more = moreNetworks(entries.size());
    m_more->setText(more);
    m_more->setVisible(!more.isEmpty());
}

std::optional<QString> L2List::hoveredL2() const {
    for (const Row& each : m_rows) {
        if (each.row->underMouse())
            return each.row->name();
    }
    return std::nullopt;
}

void L2List::resizeEvent(QResizeEvent*) {
    for (const Row& each : m_rows)
        placeSpark(each);
}

/// Beside the row's texts, in the column that the row leaves free for it.
void L2List::placeSpark(const Row& row) const {
    row.inlineSpark->setGeometry(row.row->chartColumn(width()));
}

void L2List::setRowCount(qsizetype count) {
    while (m_rows.size() > count)
        removeLastRow();
    while (m_rows.size() < count) {
        auto* row = new L2Row;
        m_rows.append({row, new Sparkline(row)});
        m_layout->addWidget(row);
    }
}

/// The keyboard's focus moves up, or to what comes first where no row is left: without any, keys would reach nothing.
void L2List::removeLastRow() {
    const std::unique_ptr<L2Row> row(m_rows.takeLast().row);
    if (row->hasFocus() && !m_rows.isEmpty())
        m_rows.last().row->setFocus(Qt::OtherFocusReason);
    row->hide();
}

void L2List::fill(const Row& row, const L2Entry& entry, Denomination denom) const {
    row.row->setNetwork(entry.name, primary(entry, denom), entry.status);
    const std::optional<ChartHistory> history = Format::chartHistory(BadgeChain::l2(entry.name), {}, {entry});
    row.inlineSpark->setSeries(history ? history->heading : QString(), history ? history->values : QList<double>());
    row.inlineSpark->setVisible(history.has_value());
    placeSpark(row);
}

} // namespace torvane
