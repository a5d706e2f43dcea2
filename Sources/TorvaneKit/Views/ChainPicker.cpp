#include "Views/ChainPicker.h"

#include "Design/DesignSystem.h"
#include "Design/Symbols.h"
#include "Views/AccessibleControls.h"
#include "Views/Drawing.h"
#include "Views/HiddenText.h"
#include "Views/PickerList.h"
#include "Views/TextRun.h"

#include <QKeyEvent>
#include <QListView>
#include <QPainter>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr int pickerHeight = 28;
constexpr double radius = 7;
constexpr int padding = 10;
constexpr double symbolSize = 10;
constexpr int mostVisible = 12;

/// On one line, and of it no more than can be shown: relays name networks as they like.
QString titleOf(const BadgeChain& chain) {
    return chain.title().left(TextRun::mostDrawn).simplified();
}

} // namespace

ChainPicker::ChainPicker(const QString& name, QWidget* parent)
    : QComboBox(parent) {
    installControlAccessibility();
    setAccessibleName(name);
    setFont(Fonts::sans(12, QFont::Normal));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    setMaxVisibleItems(mostVisible);
    setModel(&m_titles);
    PickerList::install(*this);
    connect(this, &QComboBox::activated, this, [this](int index) { Q_EMIT chosen(m_chains[index]); });
}

void ChainPicker::offer(const QList<BadgeChain>& chains) {
    if (chains == m_chains)
        return;
    m_chains = chains;
    QStringList titles;
    for (const BadgeChain& chain : chains)
        titles.append(titleOf(chain));
    m_titles.setStringList(titles);
    showSelection();
    if (view()->isVisible())
        showPopup(); // As high as the networks are many now.
}

void ChainPicker::select(const BadgeChain& chain) {
    m_selection = chain;
    showSelection();
}

void ChainPicker::showSelection() {
    setPlaceholderText(titleOf(m_selection));
    const auto index = static_cast<int>(m_chains.indexOf(m_selection));
    setCurrentIndex(index);
    view()->setCurrentIndex(m_titles.index(index)); // Screen readers ask the list, also while it is closed.
}

QString ChainPicker::shownTitle() const {
    return titleOf(m_selection);
}

QSize ChainPicker::sizeHint() const {
    return {QComboBox::sizeHint().width(), pickerHeight};
}

QRect ChainPicker::textRoom() const {
    return rect().adjusted(padding, 0, -padding - static_cast<int>(symbolSize) - padding / 2, 0);
}

bool ChainPicker::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QComboBox::event(event);
    const bool isCut = fontMetrics().horizontalAdvance(shownTitle()) > textRoom().width();
    showHiddenText(*event, isCut ? shownTitle() : QString(), *this);
    return true;
}

void ChainPicker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(opacityOf(*this));
    drawRoundedRect(painter, rect(), radius, underMouse() ? Palette::surface3 : Palette::surface2, Palette::line2);
    const bool isOffered = currentIndex() >= 0;
    const QRect symbol(width() - padding - int(symbolSize), (height() - int(symbolSize)) / 2, int(symbolSize),
                       int(symbolSize));
    Symbols::paint(painter, QStyle::visualRect(layoutDirection(), rect(), symbol), u"chevron.down"_s, Palette::ink3);
    painter.setPen(isOffered ? Palette::ink : Palette::ink3);
    drawLine(painter, QStyle::visualRect(layoutDirection(), rect(), textRoom()), shownTitle());
}

/// A combo box takes every key that carries a character for the beginning of a title, shortcuts too.
void ChainPicker::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier))
        event->ignore();
    else
        QComboBox::keyPressEvent(event);
}

/// Whoever scrolls the panel does not mean to choose.
void ChainPicker::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void ChainPicker::enterEvent(QEnterEvent* event) {
    QComboBox::enterEvent(event);
    update();
}

void ChainPicker::leaveEvent(QEvent* event) {
    QComboBox::leaveEvent(event);
    update();
}

} // namespace torvane
