#include "Views/ChainPicker.h"

#include "Design/DesignSystem.h"
#include "Design/Symbols.h"
#include "Views/AccessibleControls.h"
#include "Views/Drawing.h"
#include "Views/PickerList.h"

#include <QListView>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr int pickerHeight = 28;
constexpr double radius = 7;
constexpr int padding = 10;
constexpr double symbolSize = 10;
constexpr int mostVisible = 12;

} // namespace

ChainPicker::ChainPicker(const QString& name, QWidget* parent)
    : QComboBox(parent) {
    readControls();
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
        titles.append(chain.title());
    m_titles.setStringList(titles);
    showSelection();
}

void ChainPicker::select(const BadgeChain& chain) {
    m_selection = chain;
    showSelection();
}

void ChainPicker::showSelection() {
    setPlaceholderText(m_selection.title());
    const auto index = static_cast<int>(m_chains.indexOf(m_selection));
    setCurrentIndex(index);
    view()->setCurrentIndex(m_titles.index(index)); // Screen readers ask the list, also while it is closed.
}

QSize ChainPicker::sizeHint() const {
    return {QComboBox::sizeHint().width(), pickerHeight};
}

void ChainPicker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(opacityOf(*this));
    drawRoundedRect(painter, rect(), radius, underMouse() ? Palette::surface3 : Palette::surface2, Palette::line2);
    const bool isOffered = currentIndex() >= 0;
    const QRect symbol(width() - padding - int(symbolSize), (height() - int(symbolSize)) / 2, int(symbolSize),
                       int(symbolSize));
    const QRect text = rect().adjusted(padding, 0, symbol.x() - padding / 2 - width(), 0);
    Symbols::paint(painter, QStyle::visualRect(layoutDirection(), rect(), symbol), u"chevron.down"_s, Palette::ink3);
    painter.setPen(isOffered ? Palette::ink : Palette::ink3);
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), text),
                     QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter),
                     fontMetrics().elidedText(m_selection.title(), Qt::ElideRight, text.width()));
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
