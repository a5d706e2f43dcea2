#include "Views/TierCard.h"

#include "Design/DesignSystem.h"
#include "Views/Card.h"
#include "Views/StatusDot.h"

namespace torvane {

namespace {

constexpr int cardHeight = 73;
constexpr double padding = 10;
constexpr double dotSize = 6;

// Baselines from the card's top.
constexpr double labelBaseline = 20;
constexpr double gweiBaseline = 43;
constexpr double subBaseline = 60;

} // namespace

TierCard::TierCard(QWidget* parent)
    : QWidget(parent)
    , m_label(Fonts::label())
    , m_gwei(Fonts::mono(18, QFont::Medium))
    , m_smallGwei(Fonts::mono(12, QFont::Medium))
    , m_sub(Fonts::mono(10.5, QFont::Normal)) {
    installAccessibility();
    setFixedHeight(cardHeight);
}

void TierCard::setTier(const QString& label, const QString& gwei, const QString& sub, GasLevel level) {
    const bool isOtherLabel = m_label.setText(label.toUpper());
    const bool isOtherFigure = m_gwei.setText(gwei);
    const bool isOtherSub = m_sub.setText(sub);
    if (!isOtherLabel && !isOtherFigure && !isOtherSub && level == m_level)
        return;
    m_smallGwei.setText(gwei);
    m_level = level;
    tellAccessibleName(*this, QStringLiteral("%1: %2 gwei, %3, %4").arg(label, gwei, sub, QString(word(level))));
    update();
}

QSize TierCard::sizeHint() const {
    return {100, cardHeight};
}

QString TierCard::accessibleValue() const {
    return m_gwei.text() + QStringLiteral(" gwei");
}

void TierCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintCard(painter, rect());
    const double room = width() - 2 * padding;
    const QPointF dot(width() - padding - dotSize / 2, labelBaseline - dotSize / 2 - 1);
    StatusDot::paint(painter, dot, color(m_level), dotSize);
    painter.setPen(Palette::ink3);
    m_label.draw(painter, {padding, labelBaseline}, room - 2 * dotSize);
    m_sub.draw(painter, {padding, subBaseline}, room);
    painter.setPen(Palette::ink);
    const TextRun& figure = m_gwei.fits(room) ? m_gwei : m_smallGwei; // A figure is worth more than its size.
    figure.draw(painter, {padding, gweiBaseline}, room);
}

} // namespace torvane
