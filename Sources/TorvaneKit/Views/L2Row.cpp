#include "Views/L2Row.h"

#include "Views/HiddenText.h"

#include <QClipboard>
#include <QGuiApplication>

#include <chrono>
#include <cmath>

namespace torvane {

using namespace std::chrono_literals;

namespace {

constexpr int rowHeight = 34;
constexpr int padding = 14;
constexpr int gap = 10;
constexpr int nameGap = 6;
constexpr int leastName = 62;
constexpr int chartWidth = 62;
constexpr int chartHeight = 24;
constexpr auto copiedFor = 1500ms;

QFont figureFont() {
    return Fonts::mono(12, QFont::Normal);
}

int usualFigureWidth() {
    TextRun usual(figureFont());
    usual.setText(QStringLiteral("0.00000 gwei"));
    return static_cast<int>(std::ceil(usual.width()));
}

} // namespace

L2Row::L2Row(QWidget* parent)
    : PlainButton(parent)
    , m_usualFigure(usualFigureWidth())
    , m_label(Fonts::sans(12, QFont::Medium), Fonts::mono(10, QFont::Normal))
    , m_primary(figureFont()) {
    m_copied.setSingleShot(true);
    m_copied.setInterval(copiedFor);
    connect(&m_copied, &QTimer::timeout, this, &L2Row::showStatus);
    connect(this, &QAbstractButton::clicked, this, &L2Row::copy);
}

void L2Row::setNetwork(const QString& name, const QString& primary, const QString& status) {
    const bool isOtherFigure = m_primary.setText(primary);
    if (name == m_name && status == m_status && !isOtherFigure)
        return;
    if (name != m_name)
        m_copied.stop(); // It was another network that was copied.
    m_name = name;
    m_status = status;
    showStatus();
    update();
}

void L2Row::showStatus() {
    const QString status = m_copied.isActive() ? QStringLiteral("Copied") : m_status;
    if (m_label.set(m_name, status))
        update();
    tellAccessibleName(*this, QStringList{m_name, m_primary.text(), status}.join(QStringLiteral(", ")));
}

void L2Row::copy() {
    QGuiApplication::clipboard()->setText(m_name + QLatin1Char(' ') + m_primary.text());
    m_copied.start();
    showStatus();
}

QRect L2Row::chartColumn(int rowWidth) const {
    const int left = rowWidth - padding - figureColumn(rowWidth) - gap - chartWidth;
    return {left, (rowHeight - chartHeight) / 2, chartWidth, chartHeight};
}

/// The same in all rows, so that their charts stand below each other. An unusual figure has more, as far as something
/// is left for the name.
int L2Row::figureColumn(int rowWidth) const {
    const int others = 2 * padding + static_cast<int>(NetworkLabel::textStart) + leastName + nameGap + chartWidth + gap;
    const int wanted = static_cast<int>(std::ceil(m_primary.width()));
    return std::max(m_usualFigure, std::min(wanted, rowWidth - others));
}

double L2Row::labelRoom() const {
    return std::max(NetworkLabel::textStart, double(chartColumn(width()).left() - nameGap - padding));
}

QSize L2Row::sizeHint() const {
    return {2 * padding + static_cast<int>(NetworkLabel::textStart) + m_usualFigure + gap + chartWidth, rowHeight};
}

QString L2Row::hiddenText() const {
    QStringList hidden;
    if (m_label.isNameCut(labelRoom()))
        hidden.append(m_name);
    if (!m_primary.fits(figureColumn(width())))
        hidden.append(m_primary.text());
    return hidden.join(QStringLiteral(" · "));
}

bool L2Row::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        showHiddenText(*event, hiddenText(), *this);
        return true;
    }
    return PlainButton::event(event);
}

void L2Row::paintContent(QPainter& painter) {
    const QColor statusColor = m_copied.isActive() ? Palette::pos : l2StatusColor(m_status);
    m_label.paint(painter, {padding, (rowHeight - NetworkLabel::height) / 2}, labelRoom(), statusColor);
    painter.setPen(Palette::ink);
    const QPointF baseline(width() - padding, TextRun::baseline(figureFont(), rowHeight));
    m_primary.drawRight(painter, baseline, figureColumn(width()));
}

} // namespace torvane
