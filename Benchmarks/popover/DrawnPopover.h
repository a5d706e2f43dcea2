#pragma once

#include "Model/Snapshot.h"

#include <QFont>
#include <QPainterPath>

namespace torvane {

/// The yardstick: what the popover shows, drawn top to bottom as one would first write it, with ready paths for the
/// marks but nothing else kept from one time to the next.
class DrawnPopover final {
public:
    explicit DrawnPopover(const Snapshot& snapshot);

    void draw(QPainter& painter) const;

private:
    void drawHeader(QPainter& painter) const;
    void drawTiers(QPainter& painter) const;
    void drawCosts(QPainter& painter) const;
    void drawRow(QPainter& painter, const L2Entry& entry, int top) const;
    void drawFooter(QPainter& painter, int top) const;

    Snapshot m_snapshot;
    QList<QList<QPainterPath>> m_marks; ///< by row
    QFont m_caption;
    QFont m_body;
    QFont m_bodyMono;
    QFont m_title;
    QFont m_figure;
};

} // namespace torvane
