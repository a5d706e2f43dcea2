#include "Views/NetworksPanel.h"

#include "Design/DesignSystem.h"
#include "Views/L2Metadata.h"
#include "Views/PanelParts.h"
#include "Views/PreferencesPanels.h"
#include "Views/ShownNetworks.h"
#include "Views/Switch.h"
#include "Views/TextLabel.h"

#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace torvane {

using namespace PanelParts;

namespace {

constexpr int morePadding = 10;

} // namespace

NetworksPanel::NetworksPanel(SnapshotStore& store, AppSettings& settings, QWidget* parent)
    : QWidget(parent)
    , m_settings(settings) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    fill();
    follow(store.snapshot);
    store.snapshot.observe(this, [this](const std::optional<Snapshot>& next) { follow(next); });
}

void NetworksPanel::follow(const std::optional<Snapshot>& snapshot) {
    std::optional<QStringList> names;
    QString more;
    if (snapshot) {
        names.emplace();
        for (const L2Entry& entry : snapshot->l2.first(std::min(snapshot->l2.size(), mostShownNetworks)))
            names->append(entry.name);
        more = moreNetworks(snapshot->l2.size());
    }
    if (names == m_names && more == m_more)
        return;
    m_names = names;
    m_more = more;
    fillSoon();
}

/// Not under a button that is pressed: its click would be lost with it.
void NetworksPanel::fillSoon() {
    const QAbstractButton* pressed = pressedSwitch();
    if (!pressed)
        fill();
    else if (!std::exchange(m_isDue, true))
        connect(pressed, &QAbstractButton::released, this, &NetworksPanel::fill, Qt::QueuedConnection);
}

const QAbstractButton* NetworksPanel::pressedSwitch() const {
    const QList<Switch*> switches = findChildren<Switch*>();
    const auto found = std::ranges::find_if(switches, &QAbstractButton::isDown);
    return found == switches.end() ? nullptr : *found;
}

void NetworksPanel::fill() {
    m_isDue = false;
    const QString focused = focusedNetwork();
    delete m_content;
    const QFont body = Fonts::sans(13, QFont::Normal);
    m_content = m_names ? list() : new TextLabel(u"Waiting for the first snapshot…"_s, body, Palette::ink3);
    layout()->addWidget(m_content);
    if (isVisible())
        m_content->show(); // Now: shown later, it would have no height for a moment, and the panel would scroll away.
    for (Switch* network : m_content->findChildren<Switch*>()) {
        if (!focused.isNull() && network->accessibleName() == focused)
            network->setFocus(Qt::OtherFocusReason);
    }
}

/// The network whose switch has the keyboard's focus in this window, also while another window is in use; null without
/// one.
QString NetworksPanel::focusedNetwork() const {
    const QWidget* focused = window()->focusWidget();
    return focused && isAncestorOf(focused) ? focused->accessibleName() : QString();
}

QWidget* NetworksPanel::list() {
    QList<QWidget*> rows{row(netInfo(u"Ethereum"_s, u"Mainnet · Layer 1"_s), capsule(u"Always"_s))};
    for (const QString& name : *m_names) {
        rows.append(sep());
        rows.append(row(netInfo(name, l2Kind(name)), networkSwitch(name)));
    }
    if (!m_more.isEmpty()) {
        auto* more = new TextLabel(m_more, Fonts::sans(11, QFont::Normal), Palette::ink3);
        more->setContentsMargins(0, morePadding, 0, morePadding);
        rows.append(sep());
        rows.append(more);
    }
    const QString note = u"Enabled networks appear in the popover's Layer 2 list. Ethereum mainnet is always shown."_s;
    return card(column(rows), note);
}

QWidget* NetworksPanel::networkSwitch(const QString& name) {
    auto* toggle = new Switch(name);
    toggle->setChecked(m_settings.isEnabled(name));
    m_settings.disabledL2.observe(
        toggle, [toggle, name](const QSet<QString>& disabled) { toggle->setChecked(!disabled.contains(name)); });
    connect(toggle, &QAbstractButton::clicked, this, [this, name] { m_settings.toggle(name); });
    return toggle;
}

QWidget* PreferencesPanels::networks(SnapshotStore& store, AppSettings& settings) {
    return new NetworksPanel(store, settings);
}

} // namespace torvane
