#include "Views/NetworkLabel.h"

#include "Design/ChainIcon.h"

namespace torvane {

namespace {

constexpr double nameHeight = 14;
constexpr double statusHeight = 12;

} // namespace

NetworkLabel::NetworkLabel(const QFont& nameFont, const QFont& statusFont)
    : m_nameFont(nameFont)
    , m_statusFont(statusFont)
    , m_name(nameFont)
    , m_status(statusFont) {}

bool NetworkLabel::set(const QString& name, const QString& status) {
    const bool isOtherStatus = m_status.setText(status);
    m_name.setText(name);
    if (name == m_markName)
        return isOtherStatus;
    m_markName = name; // Exactly: it is the network's identity.
    m_mark.invalidate();
    return true;
}

void NetworkLabel::paint(QPainter& painter, QPointF corner, double room, const QColor& statusColor) {
    m_mark.paint(painter, QRectF(corner + QPointF(0, (height - markSize) / 2), QSizeF(markSize, markSize)), m_markName,
                 [this](QPainter& drawing, const QRectF& box) { ChainIcon::paint(drawing, box, m_markName); });
    const double left = corner.x() + textStart;
    painter.setPen(Palette::ink);
    m_name.draw(painter, {left, corner.y() + TextRun::baseline(m_nameFont, nameHeight)}, room - textStart);
    painter.setPen(statusColor);
    const double statusTop = corner.y() + nameHeight;
    m_status.draw(painter, {left, statusTop + TextRun::baseline(m_statusFont, statusHeight)}, room - textStart);
}

} // namespace torvane
