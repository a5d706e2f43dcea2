#include "Views/PopoverView.h"

#include "Model/Format.h"
#include "Views/ActionRow.h"
#include "Views/ChartView.h"
#include "Views/Composition.h"
#include "Views/FigureLine.h"
#include "Views/L2Detail.h"
#include "Views/L2List.h"
#include "Views/LevelLine.h"
#include "Views/PopoverText.h"
#include "Views/Rule.h"
#include "Views/SymbolTile.h"
#include "Views/TierCard.h"
#include "Views/UpdatedLine.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollArea>
#include <QShortcut>

namespace torvane {

namespace {

constexpr int margin = 14;
constexpr int captionHeight = 14;
constexpr int headHeight = 22;
constexpr int headBaseline = 19;
constexpr QSize chartSize(PopoverView::fixedWidth - 2 * margin, 46);

TextStyle caption() {
    return {Fonts::label(), Palette::ink3, captionHeight};
}

} // namespace

PopoverView::PopoverView(SnapshotStore& store, AppSettings& settings, QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_settings(settings)
    , m_body(section(column(header(), tiers(), costs(), new Rule(margin), price(), new Rule(margin), sparkSection(),
                            new Rule(margin), layer2())))
    , m_loading(
          new TextLine({Fonts::sans(12, QFont::Normal), Palette::ink3, 62}, QStringLiteral("Loading gas prices…"))) {
    setFixedWidth(fixedWidth);
    setLayout(column(m_body, padded({margin, 0, margin, 0}, row(m_loading)), new Rule(margin), footer(),
                     new Rule(margin), actions(), stretch));
    connect(&m_store, &ObservableObject::objectWillChange, this, &PopoverView::showSoon);
    connect(&m_settings, &ObservableObject::objectWillChange, this, &PopoverView::showSoon);
    showPublished();
}

std::optional<QString> PopoverView::hoveredL2() const {
    return m_l2List->hoveredL2();
}

QSize PopoverView::sizeHint() const {
    return {fixedWidth, QWidget::sizeHint().height()};
}

/// Title and figure stand on one line, block and level on the next: whichever is long has the room that the other one
/// leaves.
QLayout* PopoverView::header() {
    auto* title = new TextLine({Fonts::sans(13, QFont::DemiBold), Palette::ink, headHeight, headBaseline},
                               QStringLiteral("Ethereum"));
    auto* figure =
        new FigureLine(Fonts::mono(24, QFont::Medium), Fonts::mono(12, QFont::Normal), headHeight, headBaseline);
    auto* block = new TextLine(caption());
    auto* level = new LevelLine;
    bind([this, figure, block, level](const Snapshot& snapshot) {
        figure->setFigure(headline(snapshot, m_settings.denom));
        block->setText(blockCaption(m_store.ethereumBlockNumber, snapshot));
        level->setLevel(gasLevel(snapshot.gas.baseFee));
    });
    auto* tile = new SymbolTile(QStringLiteral("fuelpump.fill"), {30, 9, 18}, {Palette::surface3, Palette::ink});
    return padded({margin, 12, margin, 12},
                  row(column(stretch, tile), Space{10},
                      column(row(title, Space{10}, figure), Space{1}, row(block, Space{10}, stretch, level))));
}

QLayout* PopoverView::tiers() {
    struct Tier {
        BadgeSource source;
        TierCard* card;
    };
    const QList<Tier> all{
        {BadgeSource::low, new TierCard}, {BadgeSource::average, new TierCard}, {BadgeSource::high, new TierCard}};
    bind([all](const Snapshot& snapshot) {
        for (const Tier& tier : all) {
            const double gwei = value(tier.source, snapshot.gas);
            tier.card->setTier(QString(rawValue(tier.source)), Format::gwei(gwei),
                               Format::txUsd(gwei, snapshot.price.eth, Format::transferGas), gasLevel(gwei));
        }
    });
    return padded({margin, 0, margin, 0}, row(all[0].card, Space{6}, all[1].card, Space{6}, all[2].card));
}

/// Each cost stands below a tier's card, in line with its texts.
QLayout* PopoverView::costs() {
    const auto cell = [](const QString& label, TextLine* figure) {
        return padded({10, 0, 0, 0}, column(new TextLine(caption(), label), figure));
    };
    const auto figure = [] { return new TextLine({Fonts::mono(12, QFont::Medium), Palette::ink, 16}); };
    TextLine* transfer = figure();
    TextLine* swap = figure();
    TextLine* mint = figure();
    bind([transfer, swap, mint](const Snapshot& snapshot) {
        transfer->setText(cost(snapshot.gas.feeTransferUsd));
        swap->setText(cost(snapshot.gas.feeSwapUsd));
        mint->setText(Format::txUsd(snapshot.gas.baseFee, snapshot.price.eth, Format::nftMintGas));
    });
    QBoxLayout* cells = row(cell(QStringLiteral("TRANSFER"), transfer), Space{6}, cell(QStringLiteral("SWAP"), swap),
                            Space{6}, cell(QStringLiteral("NFT MINT"), mint));
    for (const int each : {0, 2, 4})
        cells->setStretch(each, 1);
    return padded({margin, 10, margin, 12}, cells);
}

QLayout* PopoverView::price() {
    constexpr int height = 16;
    auto* label = new TextLine({Fonts::sans(10.5, QFont::Medium), Palette::ink2, height}, QStringLiteral("ETH price"));
    const TextStyle figure{Fonts::mono(12, QFont::Medium), Palette::ink, height, {}, Qt::AlignRight};
    auto* price = new TextLine(figure);
    auto* change = new TextLine(figure);
    bind([price, change](const Snapshot& snapshot) {
        price->setText(Format::ethPrice(snapshot.price.eth));
        change->setText(Format::pct(snapshot.price.change24h));
        change->setColor(always(snapshot.price.change24h < 0 ? Palette::neg : Palette::pos));
    });
    return padded({margin, 9, margin, 9}, row(label, stretch, price, Space{9}, change));
}

QLayout* PopoverView::sparkSection() {
    auto* historyChart = new ChartView(chartSize, QStringLiteral("no history yet"));
    bind([historyChart](const Snapshot& snapshot) {
        historyChart->setChart(Format::baseFeeHeading, Format::chartHistory(BadgeChain::ethereum(), snapshot.gas, {}));
    });
    return padded({margin, 12, margin, 9}, column(historyChart));
}

QWidget* PopoverView::layer2() {
    m_l2List = new L2List;
    auto* note = new TextLine({Fonts::sans(10.5, QFont::Medium), Palette::ink3, 24},
                              QStringLiteral("All networks are switched off"));
    bind([this, note](const Snapshot& snapshot) {
        const QList<L2Entry> enabled = enabledL2(snapshot.l2, m_settings.disabledL2);
        m_l2List->setEntries(enabled, m_settings.denom);
        note->setVisible(enabled.isEmpty() && !snapshot.l2.isEmpty());
    });
    return section(column(l2Header(),
                          padded({margin, 10, margin, 4}, row(new TextLine(caption(), QStringLiteral("Layer 2")))),
                          padded({margin, 0, margin, 0}, row(note)), m_l2List, Space{9}));
}

/// The network that the badge follows, in detail, whether it is switched on or not.
QWidget* PopoverView::l2Header() {
    auto* detail = new L2Detail;
    QWidget* all =
        section(padded({margin, 10, margin, 0},
                       column(new TextLine(caption(), QStringLiteral("Layer 2 · menu-bar chain")), Space{6}, detail)));
    bind([this, detail, all](const Snapshot& snapshot) {
        const L2Entry* selected = selectedL2(snapshot.l2, m_settings.badgeChain);
        if (selected)
            detail->setNetwork(*selected, Figure::of(primary(*selected, m_settings.denom)));
        all->setVisible(selected);
    });
    return all;
}

QLayout* PopoverView::footer() {
    m_updated = new UpdatedLine;
    m_cadence = new TextLine({Fonts::label(), Palette::ink3, captionHeight, {}, Qt::AlignRight});
    return padded({margin, 9, margin, 9}, row(m_updated, stretch, m_cadence));
}

QLayout* PopoverView::actions() {
    QWidget* refresh =
        actionRow(QStringLiteral("Refresh Now"), QStringLiteral("⌘R"), Qt::Key_R, &PopoverView::refreshRequested);
    QWidget* preferences = actionRow(QStringLiteral("Preferences…"), QStringLiteral("⌘,"), Qt::Key_Comma,
                                     &PopoverView::preferencesRequested);
    QWidget* quit =
        actionRow(QStringLiteral("Quit velisk"), QStringLiteral("⌘Q"), Qt::Key_Q, &PopoverView::quitRequested);
    return padded({0, 6, 0, 6}, column(refresh, preferences, quit));
}

/// The shown key is Command, which keyboards here call Super; most hands reach for Control, so both do.
QWidget* PopoverView::actionRow(const QString& label, const QString& trailing, Qt::Key key, Action action) {
    const QKeyCombination control(Qt::ControlModifier, key);
    auto* button = new ActionRow(label, trailing, control);
    connect(button, &QAbstractButton::clicked, this, action);
    for (const QKeyCombination keys : {control, QKeyCombination(Qt::MetaModifier, key)}) {
        auto* shortcut = new QShortcut(keys, this);
        shortcut->setAutoRepeat(false); // A held key asks once, as a held button does.
        connect(shortcut, &QShortcut::activated, this, action);
    }
    return button;
}

/// Changes are announced before they take effect, and many at a time: the view looks once, after all of them.
void PopoverView::showSoon() {
    if (m_isStale)
        return;
    m_isStale = true;
    QMetaObject::invokeMethod(this, &PopoverView::showPublished, Qt::QueuedConnection);
}

void PopoverView::showPublished() {
    m_isStale = false;
    const std::optional<Snapshot>& snapshot = m_store.snapshot;
    if (snapshot) {
        for (const Binding& show : m_bindings)
            show(*snapshot);
    }
    m_body->setVisible(snapshot.has_value());
    m_loading->setVisible(!snapshot.has_value());
    m_updated->setTime(m_store.lastUpdated);
    m_cadence->setText(QString(rawValue(m_settings.liveCadence.value())));
}

void PopoverView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up:
        focusPreviousChild();
        return;
    case Qt::Key_Down:
        focusNextChild();
        return;
    case Qt::Key_Home:
    case Qt::Key_End:
        focusOn(event->key() == Qt::Key_End ? *buttons().last() : *buttons().first(), Qt::OtherFocusReason);
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

/// All that can be pressed, from top to bottom.
QList<PlainButton*> PopoverView::buttons() const {
    QList<PlainButton*> visible = findChildren<PlainButton*>();
    visible.removeIf([this](const PlainButton* button) { return !button->isVisibleTo(this); });
    return visible;
}

/// In the order of the screen, and round again: Qt's own order is that of coming, and rows come and go.
bool PopoverView::focusNextPrevChild(bool next) {
    const QList<PlainButton*> all = buttons();
    const qsizetype current = all.indexOf(QApplication::focusWidget());
    const qsizetype before = current < 0 ? all.size() : current;
    const qsizetype index = next ? (current + 1) % all.size() : (before + all.size() - 1) % all.size();
    focusOn(*all[index], next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void PopoverView::focusOn(PlainButton& button, Qt::FocusReason reason) {
    button.setFocus(reason);
    for (QWidget* each = parentWidget(); each; each = each->parentWidget()) {
        if (auto* scroller = qobject_cast<QScrollArea*>(each))
            scroller->ensureWidgetVisible(&button, 0, margin);
    }
}

} // namespace torvane
