// Writes pictures of the badge in all its states: BadgeGallery FOLDER. badge-STATE-LOOK-SCALEx.png has it upon a piece
// of a panel, LOOK being light or dark: with the figure beside the mark, and as a square of 22 points.

#include "Badge/BadgeDrawing.h"
#include "Gallery/Gallery.h"
#include "Support/PopoverScene.h"

#include <QPainter>

#include <functional>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

constexpr QSize panel{232, 34};
constexpr int square = 22;

struct State {
    const char* name;
    const char* caption;
    std::function<void(PopoverScene&)> prepare;
};

void follow(PopoverScene& scene, const QString& network) {
    scene.settings.badgeChain = BadgeChain::l2(network);
}

const QList<State> states{
    {"usual", "In the panel's colour", [](PopoverScene&) {}},
    {"colour", "In colour", [](PopoverScene& scene) { scene.settings.colorIcon = true; }},
    {"no-dot", "Without the dot", [](PopoverScene& scene) { scene.settings.menuDot = false; }},
    {"no-figure", "Without the figure", [](PopoverScene& scene) { scene.settings.menuNumber = false; }},
    {"usd", "In US dollars", [](PopoverScene& scene) { scene.settings.denom = Denomination::usd; }},
    {"layer-2", "A Layer 2 network", [](PopoverScene& scene) { follow(scene, u"Arbitrum"_s); }},
    {"layer-2-colour", "A Layer 2 network in colour",
     [](PopoverScene& scene) {
         follow(scene, u"Arbitrum"_s);
         scene.settings.colorIcon = true;
     }},
    {"unknown-network", "A network that the document does not have",
     [](PopoverScene& scene) { follow(scene, u"Nowhere"_s); }},
    {"loading", "Before the first document", [](PopoverScene& scene) { scene.store.snapshot = std::nullopt; }},
};

QImage picture(const BadgePicture& badge, bool isDark, int scale) {
    const BadgeInk ink{QColor(isDark ? 0xeeeeec : 0x2e3436), {}};
    QImage image(panel * scale, QImage::Format_RGB32);
    image.fill(QColor(isDark ? 0x2f2f2f : 0xf6f5f4));
    QPainter painter(&image);
    const QImage wide = wideBadge(badge, ink, scale);
    painter.drawImage(8 * scale, (image.height() - wide.height()) / 2, wide);
    painter.drawImage(image.width() - (square + 8) * scale, (panel.height() - square) / 2 * scale,
                      squareBadge(badge, ink, square * scale));
    return image;
}

bool write(const State& state, const QDir& folder) {
    PopoverScene scene;
    state.prepare(scene);
    const BadgeLook look =
        badgeLook(scene.store.snapshot, scene.store.lastUpdated, scene.settings, PopoverScene::now());
    bool ok = true;
    for (const bool isDark : {false, true}) {
        for (const int scale : {1, 2}) {
            const QString name = u"badge-%1-%2-%3x.png"_s.arg(QLatin1StringView(state.name),
                                                              isDark ? u"dark"_s : u"light"_s, QString::number(scale));
            QImage image = picture(look.picture, isDark, scale);
            image.setText(u"Description"_s, QLatin1StringView(state.caption));
            ok &= image.save(folder.filePath(name));
        }
    }
    return ok;
}

bool writeAll(const QDir& folder) {
    bool ok = true;
    for (const State& state : states)
        ok &= write(state, folder);
    return ok;
}

} // namespace

int main(int argc, char** argv) {
    return Gallery::run(argc, argv, "BadgeGallery", writeAll);
}
