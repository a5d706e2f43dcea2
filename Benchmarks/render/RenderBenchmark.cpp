// What the badge costs the CPU, beside the least that a program of this toolkit could do.
// Drawn anew: every network's badge, with a dot, in colours and as a template; beside one icon's path, parsed
// beforehand, of 300 to 900 characters, with the same dot, drawn by QPainter into as large a picture. Found: the key of
// a look and its picture; beside a key by QString::asprintf and a look into a QHash. Blocks of the two take turns;
// medians of all rounds. RenderBenchmark [ROUNDS]   exits with 1 where a bar is missed, with 2 where a figure is wrong
#include "Comparison.h"
#include "Design/ChainMarksMono.h"
#include "Design/DesignSystem.h"
#include "Icons/IconPaths.h"
#include "Icons/QtSVGPath.h"
#include "ThreadCPU.h"
#include "Views/MenuBarLabel.h"

#include <QGuiApplication>
#include <QPainter>

#include <cstdio>
#include <cstdlib>

using namespace torvane;

namespace {

constexpr int side = 54;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::exit(2);
}

QList<QPainterPath> yardstickPaths() {
    QList<QPainterPath> paths;
    for (const QString& icon : iconPaths()) {
        if (icon.size() >= 300 && icon.size() <= 900 && isReadAlike(icon))
            paths.append(qtSVGPath(icon));
    }
    return paths;
}

QImage drawYardstick(const QPainterPath& path) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(3, 3);
    painter.translate(1.5, 1.5);
    painter.save();
    painter.scale(15 / 24.0, 15 / 24.0);
    painter.fillPath(path, QColor(98, 126, 234));
    painter.restore();
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.setBrush(Qt::black);
    painter.drawEllipse(QPointF(12.75, 12.75), 3.55, 3.55);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setBrush(Palette::pos);
    painter.drawEllipse(QPointF(12.75, 12.75), 2.25, 2.25);
    return image;
}

/// Every network's badge, each in colours and as a template.
QList<MenuBarBadgeIcon> allBadges() {
    QList<MenuBarBadgeIcon> badges;
    for (const QString& name : ChainMarksMono::byName().keys()) {
        for (const bool colored : {false, true})
            badges.append({name, MenuBarLabel::markSize, Palette::pos, MenuBarLabel::dotSize, colored});
    }
    return badges;
}

QString yardstickKey(const char* network) {
    return QString::asprintf("%c_%s_%d_on_%.3f_%.3f_%.3f_%.3f_%.0f", 'c', network, 15000, .369, .447, .341, 1., 4500.);
}

/// CPU microseconds of one of so many calls.
template <class Work>
double microseconds(int calls, const Work& work) {
    const double start = threadMicroseconds();
    for (int call = 0; call < calls; ++call) {
        if (work(call).width() != side)
            fail("A badge was not drawn");
    }
    return (threadMicroseconds() - start) / calls;
}

/// The medians of both, measured by turns; the first round fills the caches.
template <class Ours, class Yardstick>
Comparison compare(const char* what, int rounds, int calls, double bar, const Ours& ours, const Yardstick& yardstick) {
    std::vector<double> ourTimes;
    std::vector<double> yardstickTimes;
    for (int round = 0; round <= rounds; ++round) {
        const double our = microseconds(calls, ours);
        const double other = microseconds(calls, yardstick);
        if (round == 0)
            continue;
        ourTimes.push_back(our);
        yardstickTimes.push_back(other);
    }
    return {what, "us", median(ourTimes), median(yardstickTimes), bar};
}

Comparison drawnAnew(int rounds) {
    const QList<MenuBarBadgeIcon> badges = allBadges();
    const QList<QPainterPath> paths = yardstickPaths();
    const auto ours = [&](int call) {
        MenuBarRasterCache::badgeIcons().clear();
        return MenuBarLabel::badgeRaster(badges[call % badges.size()]).image;
    };
    return compare("badge drawn anew", rounds, 400, 0.8, ours,
                   [&](int call) { return drawYardstick(paths[7 * call % paths.size()]); });
}

Comparison found(int rounds) {
    const MenuBarBadgeIcon badge{QStringLiteral("Ethereum"), MenuBarLabel::markSize, Palette::pos,
                                 MenuBarLabel::dotSize, true};
    QHash<QString, QImage> yardstick{{yardstickKey("Ethereum"), MenuBarLabel::badgeRaster(badge).image}};
    return compare(
        "badge found in the cache", rounds, 20'000, 1, [&](int) { return MenuBarLabel::badgeRaster(badge).image; },
        [&](int) { return yardstick.value(yardstickKey("Ethereum")); });
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 25;
    Figures::begin("CPU of a badge of " + std::to_string(side) + " pixels, beside QPainter and QHash; medians of " +
                   std::to_string(rounds) + " rounds");
    const bool isDrawingMet = drawnAnew(rounds).report();
    const bool isFindingMet = found(rounds).report();
    return isDrawingMet && isFindingMet ? 0 : 1;
}
