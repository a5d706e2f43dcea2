#include "Views/Stepper.h"

#include "Design/DesignSystem.h"
#include "Design/Symbols.h"
#include "Views/AccessibleControls.h"
#include "Views/Drawing.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

namespace torvane {

namespace {

constexpr int buttonSize = 28;
constexpr double buttonRadius = 7;
constexpr double symbolSize = 12;
constexpr int leastTextWidth = 76;
constexpr int textPadding = 6;
constexpr qint64 pageStep = 10;

} // namespace

StepButton::StepButton(const QString& symbol, const QString& name, QWidget* parent)
    : QAbstractButton(parent)
    , m_symbol(symbol) {
    setAccessibleName(name);
    setAutoRepeat(true);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::NoFocus); // For the keyboard the stepper is one control.
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize StepButton::sizeHint() const {
    return {buttonSize, buttonSize};
}

void StepButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(opacityOf(*this));
    const QColor fill = isDown() ? Palette::line2 : underMouse() ? Palette::surface3 : Palette::surface2;
    drawRoundedRect(painter, rect(), buttonRadius, fill, Palette::line2);
    QRectF place(0, 0, symbolSize, symbolSize);
    place.moveCenter(QRectF(rect()).center());
    Symbols::paint(painter, place, m_symbol, Palette::ink);
}

Stepper::Stepper(const QString& name, Limits limits, std::function<QString(qint64)> text, QWidget* parent)
    : QWidget(parent)
    , m_limits(limits)
    , m_text(std::move(text))
    , m_value(limits.least) {
    installControlAccessibility();
    setAccessibleName(name);
    setFont(Fonts::mono(13, QFont::Normal));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* minus = new StepButton(QStringLiteral("minus"), QStringLiteral("Decrease"), this);
    auto* plus = new StepButton(QStringLiteral("plus"), QStringLiteral("Increase"), this);
    connect(minus, &QAbstractButton::clicked, this, [this] { choose(lowered(m_value, m_limits)); });
    connect(plus, &QAbstractButton::clicked, this, [this] { choose(raised(m_value, m_limits)); });
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(minus);
    layout->addStretch();
    layout->addWidget(plus);
}

void Stepper::setValue(qint64 value) {
    if (value == m_value)
        return;
    m_value = value;
    updateGeometry();
    update();
    QAccessibleValueChangeEvent event(this, value);
    QAccessible::updateAccessibility(&event);
}

void Stepper::choose(qint64 value) {
    Q_EMIT chosen(value);
}

qint64 Stepper::lowered(qint64 value, Limits limits, qint64 by) {
    return value < limits.least + by ? limits.least : value - by;
}

qint64 Stepper::raised(qint64 value, Limits limits, qint64 by) {
    return value > limits.greatest - by ? limits.greatest : value + by;
}

QSize Stepper::sizeHint() const {
    return {textWidth() + 2 * buttonSize, buttonSize};
}

/// The same for all usual values, so that the buttons stay where they are while they are clicked.
int Stepper::textWidth() const {
    return std::max(leastTextWidth, fontMetrics().horizontalAdvance(text()) + 2 * textPadding);
}

void Stepper::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(opacityOf(*this));
    painter.setPen(Palette::ink);
    painter.drawText(rect().adjusted(buttonSize, 0, -buttonSize, 0), Qt::AlignCenter, text());
}

void Stepper::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return QWidget::keyPressEvent(event); // Another's shortcut.
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_Plus:
        return choose(raised(m_value, m_limits));
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Minus:
        return choose(lowered(m_value, m_limits));
    case Qt::Key_PageUp:
        return choose(raised(m_value, m_limits, pageStep));
    case Qt::Key_PageDown:
        return choose(lowered(m_value, m_limits, pageStep));
    case Qt::Key_Home:
        return choose(m_limits.least);
    case Qt::Key_End:
        return choose(m_limits.greatest);
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace torvane
