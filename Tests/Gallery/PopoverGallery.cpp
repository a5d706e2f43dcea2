// Writes pictures of the popover in all its states: PopoverGallery FOLDER [STATE...]. popover-STATE-LOOK-SCALEx.png,
// LOOK being light or dark. Each says what it shows.

#include "Design/DesignSystem.h"
#include "Gallery/Gallery.h"
#include "Support/PopoverScene.h"
#include "Views/L2Row.h"
#include "Views/PopoverView.h"

#include <QImage>
#include <QLocale>
#include <QPainter>

#include <functional>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

struct State {
    const char* name;
    const char* caption;
    std::function<void(PopoverScene&)> prepare;
    std::function<void(PopoverView&)> touch = [](PopoverView&) {};
};

/// One row under the pointer, one with the keyboard's focus, one just copied.
void touchRows(PopoverView& view) {
    const auto rows = view.findChildren<L2Row*>();
    rows[1]->setAttribute(Qt::WA_UnderMouse);
    rows[2]->click();
    view.activateWindow();
    QCoreApplication::processEvents();
    rows[3]->setFocus(Qt::TabFocusReason);
}

void switchAllOff(PopoverScene& scene) {
    for (const L2Entry& entry : scene.store.snapshot.value()->l2)
        scene.settings.toggle(entry.name);
}

void forgetHistories(Snapshot& snapshot) {
    snapshot.gas.history.clear();
    for (L2Entry& entry : snapshot.l2)
        entry.history.reset();
}

void lengthenNames(Snapshot& snapshot) {
    for (L2Entry& entry : snapshot.l2)
        entry.name = u"The Incredibly Decentralised "_s + entry.name + u" Superchain of the North"_s;
}

void shrinkFigures(Snapshot& snapshot) {
    snapshot.gas.baseFee = 0.000123;
    snapshot.gas.low = 0.000124;
    snapshot.gas.avg = 0.00013;
    snapshot.gas.high = 0.00000145;
    for (double& value : snapshot.gas.history)
        value /= 100000;
    snapshot.l2[0].costGwei = 0.0000123;
}

/// What no relay should send.
void estrange(Snapshot& snapshot) {
    snapshot.gas.baseFee = 3e38;
    snapshot.gas.high = 1e-30;
    snapshot.gas.history = {1e300, 0, 5e299};
    snapshot.price.eth = 1e15;
    snapshot.price.change24h = -1e9;
    const QStringList names{u"שלום עולם רשת"_s, u"🦄🌈 Chain"_s, u"<h1>Base</h1>"_s, {}, u"Line\nbreak"_s, u"X"_s};
    for (qsizetype i = 0; i < names.size(); ++i)
        snapshot.l2[i].name = names[i];
    snapshot.l2[0].costGwei = 1e-25;
    snapshot.l2[1].costGwei = 1e17;
    snapshot.l2[2].status = u"Elevated beyond anything that was ever seen on this network"_s;
    snapshot.l2[4].costGwei = 1e40;
}

const QList<State> states{
    {"usual", "A usual hour, the badge follows Arbitrum", [](PopoverScene&) {}},
    {"touched", "A row under the pointer, one just copied, one with the keyboard", [](PopoverScene&) {}, touchRows},
    {"ethereum", "The badge follows Ethereum",
     [](PopoverScene& scene) { scene.settings.badgeChain = BadgeChain::ethereum(); }},
    {"loading", "Before the first document",
     [](PopoverScene& scene) {
         scene.store.snapshot = std::nullopt;
         scene.store.lastUpdated = std::nullopt;
     }},
    {"old", "Nothing new for 47 minutes",
     [](PopoverScene& scene) {
         scene.store.lastUpdated = PopoverScene::now().addSecs(-47 * 60);
         scene.store.ethereumBlockNumber = std::nullopt;
     }},
    {"no-time", "Figures of an unknown time", [](PopoverScene& scene) { scene.store.lastUpdated = std::nullopt; }},
    {"no-history", "No histories", [](PopoverScene& scene) { scene.change(forgetHistories); }},
    {"all-off", "Every network switched off", switchAllOff},
    {"chain-missing", "The badge follows a network that the document does not have",
     [](PopoverScene& scene) { scene.settings.badgeChain = BadgeChain::l2(u"Nowhere"_s); }},
    {"sixty", "Sixty networks",
     [](PopoverScene& scene) { scene.change([](Snapshot& it) { it.l2 = SampleSnapshot::networks(60); }); }},
    {"long-names", "Long names",
     [](PopoverScene& scene) {
         scene.change(lengthenNames);
         scene.settings.badgeChain = BadgeChain::l2(scene.store.snapshot.value()->l2.first().name);
     }},
    {"usd", "In US dollars", [](PopoverScene& scene) { scene.settings.denom = Denomination::usd; }},
    {"german", "Numbers as in Germany",
     [](PopoverScene&) { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }},
    {"tiny", "Very low prices", [](PopoverScene& scene) { scene.change(shrinkFigures); }},
    {"strange", "What no relay should send", [](PopoverScene& scene) { scene.change(estrange); }},
};

/// The view on a window's ground, upon something of a desktop.
QImage picture(PopoverView& view, double scale) {
    constexpr int margin = 24;
    constexpr double radius = 12;
    QImage content(view.size() * scale, QImage::Format_ARGB32_Premultiplied);
    content.setDevicePixelRatio(scale);
    content.fill(Qt::transparent);
    view.render(&content, {}, {}, QWidget::DrawChildren);

    QImage image((view.size() + QSize(2 * margin, 2 * margin)) * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Palette::surface3.in(currentAppearance()));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF panel = QRectF(view.rect()).translated(margin, margin);
    painter.setPen(QPen(QColor(Palette::line2), 0.5));
    for (const DynamicColor* ground : {&Palette::paper, &Palette::glassScrim}) {
        painter.setBrush(QColor(*ground));
        painter.drawRoundedRect(panel, radius, radius);
    }
    painter.drawImage(panel.topLeft(), content);
    return image;
}

bool write(const State& state, const QDir& folder) {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    PopoverScene scene;
    scene.settings.badgeChain = BadgeChain::l2(u"Arbitrum"_s);
    state.prepare(scene);
    PopoverView view(scene.store, scene.settings);
    view.setAttribute(Qt::WA_TranslucentBackground);
    view.show();
    view.adjustSize();
    state.touch(view);
    bool ok = true;
    for (const Appearance look : {Appearance::light, Appearance::dark}) {
        setCurrentAppearance(look);
        for (const double scale : {1.0, 1.5, 2.0}) {
            const QString name = u"popover-%1-%2-%3x.png"_s.arg(QLatin1StringView(state.name),
                                                                look == Appearance::light ? u"light"_s : u"dark"_s,
                                                                QString::number(scale));
            QImage image = picture(view, scale);
            image.setText(u"Description"_s, QLatin1StringView(state.caption));
            ok &= image.save(folder.filePath(name));
        }
    }
    return ok;
}

bool writeAll(const QDir& folder) {
    const QStringList wanted = QApplication::arguments().mid(2);
    bool ok = true;
    for (const State& state : states) {
        if (wanted.isEmpty() || wanted.contains(QLatin1StringView(state.name)))
            ok &= write(state, folder);
    }
    return ok;
}

} // namespace

int main(int argc, char** argv) {
    return Gallery::run(argc, argv, "PopoverGallery", writeAll);
}
