#include "Views/Sidebar.h"

#include "Design/DesignSystem.h"
#include "Design/Symbols.h"
#include "Model/Config.h"
#include "Views/Drawing.h"
#include "Views/OneOfMany.h"
#include "Views/PanelParts.h"
#include "Views/SymbolTile.h"
#include "Views/TextLabel.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr int sidebarWidth = 194;
constexpr int itemHeight = 30;
constexpr double itemRadius = 7;
constexpr int itemPadding = 8;
constexpr double symbolSize = 12;
constexpr int symbolGap = 9;

} // namespace

SidebarItem::SidebarItem(const QString& symbol, const QString& title, QWidget* parent)
    : QAbstractButton(parent)
    , m_symbol(symbol) {
    setText(title);
    setAccessibleName(title);
    setFont(Fonts::sans(13, QFont::Medium));
    setCheckable(true);
    setAutoExclusive(true);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize SidebarItem::sizeHint() const {
    return {sidebarWidth, itemHeight};
}

void SidebarItem::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (isChecked())
        fillRoundedRect(painter, rect(), itemRadius, Palette::surface3);
    const QColor ink = isChecked() || isDown() || underMouse() ? Palette::ink : Palette::ink2;
    const QRectF symbol(itemPadding, (height() - symbolSize) / 2, symbolSize, symbolSize);
    const int textLeft = itemPadding + static_cast<int>(symbolSize) + symbolGap;
    const QRect text = rect().adjusted(textLeft, 0, -itemPadding, 0);
    Symbols::paint(painter, QStyle::visualRect(layoutDirection(), rect(), symbol.toRect()), m_symbol, ink);
    painter.setPen(ink);
    painter.setFont(isChecked() ? font() : Fonts::sans(13, QFont::Normal));
    drawLine(painter, QStyle::visualRect(layoutDirection(), rect(), text), this->text());
}

Sidebar::Sidebar(QWidget* parent)
    : QWidget(parent) {
    installAccessibility();
    setAccessibleName(u"Sections"_s);
    setFixedWidth(sidebarWidth);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 16, 10, 16);
    layout->setSpacing(2);
    layout->addWidget(brand());
    layout->addSpacing(14);
    layout->addStretch();
}

QWidget* Sidebar::brand() {
    QWidget* texts = PanelParts::column({
        new TextLabel(u"velisk"_s, Fonts::sans(14, QFont::DemiBold), Palette::ink),
        new TextLabel(u"Version "_s + Config::currentVersion(), Fonts::sans(11, QFont::Normal), Palette::ink3),
    });
    QWidget* brand = PanelParts::beside(new SymbolTile(u"fuelpump.fill"_s, {30, 8, 17}), 10, texts);
    brand->layout()->setContentsMargins(6, 0, 6, 0);
    return brand;
}

void Sidebar::add(const QString& symbol, const QString& title) {
    auto* item = new SidebarItem(symbol, title);
    item->installEventFilter(this);
    connect(item, &QAbstractButton::toggled, this, [this, index = static_cast<int>(m_items.size())](bool isSelected) {
        OneOfMany::keepOneTabStop(m_items);
        if (isSelected)
            Q_EMIT chosen(index);
    });
    m_items.append(item);
    auto* list = static_cast<QVBoxLayout*>(layout());
    list->insertWidget(list->count() - 1, item); // Above the free space.
}

void Sidebar::select(int index) {
    const QSignalBlocker silence(m_items[index]);
    m_items[index]->setChecked(true);
    OneOfMany::keepOneTabStop(m_items);
}

void Sidebar::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Palette::surface2);
}

/// The items' own reading of the arrow keys knows neither Home nor End.
bool Sidebar::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    const int count = static_cast<int>(m_items.size());
    const int selected = OneOfMany::checked(m_items);
    const std::optional<int> next =
        OneOfMany::afterKey(*static_cast<QKeyEvent*>(event), selected, count, layoutDirection());
    if (!next)
        return false;
    m_items[*next]->setFocus(Qt::OtherFocusReason);
    m_items[*next]->setChecked(true);
    return true;
}

} // namespace torvane
