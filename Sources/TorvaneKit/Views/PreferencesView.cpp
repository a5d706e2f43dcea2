#include "Views/PreferencesView.h"

#include "Design/DesignSystem.h"
#include "Views/FocusRing.h"
#include "Views/PanelParts.h"
#include "Views/PreferencesPanels.h"
#include "Views/Sidebar.h"
#include "Views/TextLabel.h"
#include "Views/ThinScrollBar.h"

#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

using Section = PreferencesView::Section;

constexpr int sidePadding = 24;
constexpr int topPadding = 22;
constexpr int dividerWidth = 1;

/// What stands of a section beside its name: in the sidebar, and below the panel's heading.
struct SectionLook {
    QString symbol;
    QString subtitle;
};

SectionLook lookOf(Section section) {
    switch (section) {
    case Section::general:
        return {u"slider.horizontal.3"_s, u"Startup, units, and how often gas refreshes."_s};
    case Section::networks:
        return {u"square.stack.3d.up"_s, u"Choose which chains show in the popover."_s};
    case Section::menuBar:
        return {u"menubar.rectangle"_s, u"What the icon shows at the top of your screen."_s};
    case Section::alerts:
        return {u"bell"_s, u"Get notified when gas is cheap."_s};
    case Section::appearance:
        return {u"paintpalette"_s, u"Theme and status colours."_s};
    case Section::about:
        return {u"info.circle"_s, u"Version and software updates."_s};
    }
    Q_UNREACHABLE();
}

/// What the selected section shows, read as one pane.
class Panel final : public QWidget, public AccessiblePart {
public:
    explicit Panel(const QString& title) {
        installAccessibility();
        setAccessibleName(title);
    }

    QAccessible::Role accessibleRole() const override { return QAccessible::Pane; }
};

QScrollArea* scrollArea() {
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // It has its place in the margin, and may be invisible.
    area->setVerticalScrollBar(new ThinScrollBar);
    area->viewport()->setAutoFillBackground(false);
    return area;
}

QWidget* panel(Section section, QWidget* content, int scrollBarWidth) {
    auto* title =
        new TextLabel(QString(rawValue(section)), Fonts::sans(22, QFont::DemiBold), Palette::ink, QAccessible::Heading);
    auto* subtitle = new TextLabel(lookOf(section).subtitle, Fonts::sans(12, QFont::Normal), Palette::ink3);
    subtitle->setContentsMargins(0, 3, 0, 16);
    auto* panel = new Panel(QString(rawValue(section)));
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(sidePadding, topPadding, sidePadding - scrollBarWidth, topPadding);
    layout->setSpacing(0);
    for (QWidget* part : {static_cast<QWidget*>(title), static_cast<QWidget*>(subtitle), content})
        layout->addWidget(part);
    layout->addStretch();
    return panel;
}

} // namespace

PreferencesView::PreferencesView(SnapshotStore& store, AppSettings& settings, UpdaterState& updater, QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_settings(settings)
    , m_updater(updater)
    , m_scrollArea(scrollArea()) {
    setFixedSize(contentSize);
    auto* sidebar = new Sidebar;
    for (const Section section : allCases<Section>())
        sidebar->add(lookOf(section).symbol, QString(rawValue(section)));
    sidebar->select(0);
    connect(sidebar, &Sidebar::chosen, this, [this](int index) { select(allCases<Section>()[std::size_t(index)]); });
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(dividerWidth);
    layout->addWidget(sidebar);
    layout->addWidget(m_scrollArea, 1);
    new FocusRing(this);
    select(m_section);
}

void PreferencesView::select(Section section) {
    m_section = section;
    const int scrollBarWidth = m_scrollArea->verticalScrollBar()->sizeHint().width();
    m_scrollArea->setWidget(panel(section, contentOf(section), scrollBarWidth));
    m_scrollArea->widget()->setAutoFillBackground(false); // The view's own ground shows through.
}

QWidget* PreferencesView::contentOf(Section section) {
    switch (section) {
    case Section::general:
        return PreferencesPanels::general(m_settings);
    case Section::networks:
        return PreferencesPanels::networks(m_store, m_settings);
    case Section::menuBar:
        return PreferencesPanels::menuBar(m_store, m_settings);
    case Section::alerts:
        return PreferencesPanels::alerts(m_settings);
    case Section::appearance:
        return PreferencesPanels::appearance(m_settings);
    case Section::about:
        return PreferencesPanels::about(m_updater);
    }
    Q_UNREACHABLE();
}

void PreferencesView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Palette::paper);
    const int dividerLeft = m_scrollArea->x() - dividerWidth;
    painter.fillRect(QRect(dividerLeft, 0, dividerWidth, height()), Palette::line);
}

} // namespace torvane
