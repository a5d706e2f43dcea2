#include "Views/PreferencesPanels.h"

#include "Coordination/LoginItem.h"
#include "Design/DesignSystem.h"
#include "Model/Config.h"
#include "Views/ChainPicker.h"
#include "Views/PanelParts.h"
#include "Views/ShownNetworks.h"
#include "Views/Stepper.h"
#include "Views/Switch.h"
#include "Views/SymbolTile.h"
#include "Views/TextLabel.h"

#include <QHBoxLayout>

#include <algorithm>
#include <string>

using namespace Qt::StringLiterals;

namespace torvane {

using namespace PanelParts;

namespace {

constexpr int narrowChoice = 150;
constexpr int wideChoice = 230;
constexpr Stepper::Limits thresholds{1, 80}; ///< gwei

/// A control of this width.
template <class Control>
Control* sized(Control* control, int width) {
    control->setFixedWidth(width);
    return control;
}

/// A choice that fills its card.
QWidget* filling(QWidget* choice) {
    QWidget* content = column({choice});
    content->layout()->setContentsMargins(0, 10, 0, 10);
    return content;
}

QWidget* loginSwitch(AppSettings& settings) {
    QAbstractButton* toggle = PanelParts::toggle(u"Launch at login"_s, settings.launchAtLogin);
    QObject::connect(toggle, &QAbstractButton::clicked, toggle, &LoginItem::apply);
    return toggle;
}

QWidget* chainPicker(SnapshotStore& store, AppSettings& settings) {
    auto* picker = new ChainPicker(u"Chain"_s);
    picker->offer(PreferencesPanels::badgeChains(store.snapshot));
    picker->select(settings.badgeChain);
    store.snapshot.observe(
        picker, [picker](const std::optional<Snapshot>& next) { picker->offer(PreferencesPanels::badgeChains(next)); });
    settings.badgeChain.observe(picker, [picker](const BadgeChain& next) { picker->select(next); });
    QObject::connect(picker, &ChainPicker::chosen, picker,
                     [&settings](const BadgeChain& chain) { settings.badgeChain = chain; });
    return picker;
}

/// Which figure is for Ethereum alone: the relay sends one for each Layer 2 network.
QWidget* valueRow(AppSettings& settings) {
    QWidget* choice = sized(PanelParts::choice(u"Value"_s, settings.badgeSource), wideChoice);
    QWidget* row = PanelParts::row(info(u"Value"_s, u"Which gas figure the Ethereum badge shows"_s), choice);
    row->setEnabled(settings.badgeChain->isEthereum());
    settings.badgeChain.observe(row, [row](const BadgeChain& next) { row->setEnabled(next.isEthereum()); });
    return row;
}

QWidget* dotRow(AppSettings& settings) {
    QWidget* row = PanelParts::row(info(u"Status dot"_s, u"Status colour on the icon's corner · needs Colour icon"_s),
                                   toggle(u"Status dot"_s, settings.menuDot));
    row->setEnabled(settings.colorIcon);
    settings.colorIcon.observe(row, [row](bool isColoured) { row->setEnabled(isColoured); });
    return row;
}

QWidget* thresholdStepper(AppSettings& settings) {
    const auto text = [](qint64 gwei) { return QLatin1StringView(std::to_string(gwei)) + u" gwei"_s; };
    auto* stepper = new Stepper(u"Notify when gas drops below"_s, thresholds, text);
    stepper->setValue(settings.alert);
    settings.alert.observe(stepper, [stepper](qint64 next) { stepper->setValue(next); });
    QObject::connect(stepper, &Stepper::chosen, stepper, [&settings](qint64 gwei) { settings.alert = gwei; });
    return stepper;
}

QWidget* legends() {
    auto* legends = new QWidget;
    auto* layout = new QHBoxLayout(legends);
    layout->setContentsMargins(0, 14, 0, 14);
    layout->setSpacing(26);
    layout->addWidget(legend(Palette::pos, u"Low"_s));
    layout->addWidget(legend(Palette::warn, u"Normal"_s));
    layout->addWidget(legend(Palette::neg, u"Busy"_s));
    layout->addStretch();
    return legends;
}

QWidget* aboutHeader() {
    QWidget* texts = column({
        new TextLabel(u"velisk"_s, Fonts::sans(17, QFont::DemiBold), Palette::ink),
        new TextLabel(u"Version "_s + Config::currentVersion(), Fonts::sans(12, QFont::Normal), Palette::ink3),
        new TextLabel(u"Ethereum gas, from the velisk relay."_s, Fonts::sans(12, QFont::Normal), Palette::ink2),
    });
    texts->layout()->setSpacing(2);
    QWidget* header = beside(new SymbolTile(u"fuelpump.fill"_s, {52, 12, 22}), 14, texts);
    header->layout()->setContentsMargins(0, 0, 0, 18);
    return header;
}

/// Says of a control of updates what it is no use for, in a build without a key.
void tellWhetherUseless(QWidget& control) {
    if (!Config::updatePublicKey().isEmpty())
        return;
    const QString why = u"This build takes no updates: it has no key to verify them with."_s;
    control.setToolTip(why);
    control.setAccessibleDescription(why);
}

QWidget* automaticSwitch(UpdaterState& updater) {
    auto* toggle = new Switch(u"Automatically check for updates"_s);
    tellWhetherUseless(*toggle);
    toggle->setChecked(updater.automaticChecks);
    updater.automaticChecks.observe(toggle, [toggle](bool isOn) { toggle->setChecked(isOn); });
    QObject::connect(toggle, &QAbstractButton::clicked, toggle, [&updater](bool isOn) { updater.setAutomatic(isOn); });
    return toggle;
}

QWidget* checkButton(UpdaterState& updater) {
    QAbstractButton* button = outlineButton(u"Check for Updates…"_s);
    tellWhetherUseless(*button);
    button->setEnabled(updater.canCheck);
    updater.canCheck.observe(button, [button](bool canCheck) { button->setEnabled(canCheck); });
    // Later: what checks may open a window, and this click is not over yet.
    QObject::connect(
        button, &QAbstractButton::clicked, &updater, [&updater] { updater.check(); }, Qt::QueuedConnection);
    return button;
}

} // namespace

QWidget* PreferencesPanels::general(AppSettings& settings) {
    return column({
        card(column({
            row(info(u"Launch at login"_s), loginSwitch(settings)),
            sep(),
            row(info(u"Show gas as"_s), sized(choice(u"Show gas as"_s, settings.denom), narrowChoice)),
        })),
        label(u"Live gas cadence"_s),
        card(filling(choice(u"Live gas cadence"_s, settings.liveCadence))),
    });
}

QWidget* PreferencesPanels::menuBar(SnapshotStore& store, AppSettings& settings) {
    return column({card(column({
        row(info(u"Chain"_s, u"Gas shown in the menu-bar badge"_s), sized(chainPicker(store, settings), wideChoice)),
        sep(),
        row(info(u"Show badge value"_s, u"Number beside the fuel icon"_s),
            toggle(u"Show badge value"_s, settings.menuNumber)),
        sep(),
        valueRow(settings),
        sep(),
        row(info(u"Colour icon"_s, u"Off: the chain mark follows the menu bar, like every other icon"_s),
            toggle(u"Colour icon"_s, settings.colorIcon)),
        sep(),
        dotRow(settings),
    }))});
}

QWidget* PreferencesPanels::alerts(AppSettings& settings) {
    return column({card(column({
        row(info(u"Notify when gas drops below"_s, u"Catch cheap windows to transact"_s), thresholdStepper(settings)),
        sep(),
        row(info(u"Enable notifications"_s), toggle(u"Enable notifications"_s, settings.alertEnabled)),
        sep(),
        row(info(u"Play sound with notification"_s), toggle(u"Play sound with notification"_s, settings.sound)),
    }))});
}

QWidget* PreferencesPanels::appearance(AppSettings& settings) {
    return column({
        label(u"Theme"_s),
        card(filling(choice(u"Theme"_s, settings.theme))),
        label(u"Status colours"_s),
        card(legends()),
    });
}

QWidget* PreferencesPanels::about(UpdaterState& updater) {
    QWidget* rows = column({
        row(info(u"Automatically check for updates"_s, u"Sparkle checks daily in the background"_s),
            automaticSwitch(updater)),
        sep(),
        row(info(u"Software update"_s, u"Signed updates delivered via Sparkle"_s), checkButton(updater)),
    });
    return column({
        aboutHeader(),
        card(rows, u"Updates are verified with an EdDSA signature before installing."_s),
    });
}

QList<BadgeChain> PreferencesPanels::badgeChains(const std::optional<Snapshot>& snapshot) {
    QList<BadgeChain> chains{BadgeChain::ethereum()};
    if (snapshot) {
        for (const L2Entry& entry : snapshot->l2.first(std::min(snapshot->l2.size(), mostShownNetworks)))
            chains.append(BadgeChain::l2(entry.name));
    }
    return chains;
}

} // namespace torvane
