#pragma once

#include "Views/CachedDrawing.h"
#include "Views/TextRun.h"

namespace torvane {

/// A network's mark with its name and a status below it, as rows and cards show them.
class NetworkLabel final {
public:
    static constexpr double markSize = 24;
    static constexpr double height = 26;

    NetworkLabel(const QFont& nameFont, const QFont& statusFont);

    /// True when something differs.
    bool set(const QString& name, const QString& status);

    const QString& name() const { return m_name.text(); }

    /// Where the texts begin, from the mark's left edge.
    static constexpr double textStart = markSize + 10;

    /// True when the name is cut off in this room.
    bool isNameCut(double room) const { return !m_name.fits(room - textStart); }

    /// Draws it from this corner within `room`, the status in its colour.
    void paint(QPainter& painter, QPointF corner, double room, const QColor& statusColor);

private:
    QFont m_nameFont;
    QFont m_statusFont;
    TextRun m_name;
    TextRun m_status;
    QString m_markName;
    CachedDrawing<QString> m_mark;
};

} // namespace torvane
