// What a full repaint of the popover costs, beside drawing the same figures straight away: ten networks, histories of
// 288 points. Blocks of repaints alternate between the two, the first repaint of each uncounted; medians count. Below
// the comparison stands what the very first paint costs, when nothing is kept from an earlier one yet. Then the popover
// is made, painted and discarded by twenties, the first of which fill what the libraries keep: its memory must be back.
// PopoverBenchmark [ROUNDS]   exits with 1 where a bar is missed, with 2 where one of them draws nothing
#include "Comparison.h"
#include "Coordination/SnapshotStore.h"
#include "Design/DesignSystem.h"
#include "Support/FreedMemory.h"
#include "ThreadCPU.h"
#include "Views/PopoverView.h"
#include "popover/DrawnPopover.h"

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace torvane;

namespace {

constexpr int points = 288;
constexpr int repaintsPerBlock = 10;
constexpr double bar = 0.6;

QList<double> history(double middle) {
    QList<double> values;
    for (int i = 0; i < points; ++i)
        values.append(middle * (1 + 0.3 * std::sin(i * 0.11) + 0.1 * ((i * 7919) % 31) / 31));
    return values;
}

Snapshot market() {
    Snapshot snapshot{};
    snapshot.generatedAt = u"2026-01-01T00:00:00Z"_s;
    snapshot.price = {3456.7, 1.2, {}, {}};
    snapshot.gas = {12.4, 12.5, 13.4, 31, history(12), 0.9, 6.43};
    for (const QString& name : {u"Arbitrum"_s, u"Optimism"_s, u"Base"_s, u"Robinhood Chain"_s, u"zkSync Era"_s,
                                u"Unichain"_s, u"Scroll"_s, u"Linea"_s, u"Starknet"_s, u"Ethereum"_s}) {
        L2Entry entry{};
        entry.name = name;
        entry.status = u"Normal"_s;
        entry.costGwei = 0.0105;
        entry.history = history(0.01);
        snapshot.l2.append(entry);
    }
    return snapshot;
}

QImage surface(QSize size, int scale) {
    QImage image(size * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    return image;
}

void paintView(PopoverView& view, QImage& image) {
    image.fill(Palette::paper.in(currentAppearance()));
    view.render(&image, {}, {}, QWidget::DrawChildren);
}

void paintDrawn(const DrawnPopover& drawn, QImage& image) {
    image.fill(Palette::paper.in(currentAppearance()));
    QPainter painter(&image);
    drawn.draw(painter);
}

template <class Paint>
void addBlock(const Paint& paint, std::vector<double>& times) {
    for (int i = 0; i <= repaintsPerBlock; ++i) {
        const double start = threadMicroseconds();
        paint();
        if (i > 0)
            times.push_back(threadMicroseconds() - start);
    }
}

/// A picture of nothing would be quickly painted.
void requireContent(const QImage& image) {
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colors.insert(image.pixel(x, y));
    }
    if (colors.size() > 100)
        return;
    std::fputs("A repaint drew next to nothing\n", stderr);
    std::exit(2);
}

struct Program {
    QTemporaryDir home;
    UserDefaults defaults{home.filePath(u"preferences.json"_s), home.filePath(u"cache"_s)};
    AppSettings settings{defaults};
    SnapshotStore store{settings, defaults};
};

bool compare(Program& program, const DrawnPopover& drawn, int scale, int rounds) {
    PopoverView view(program.store, program.settings);
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.show();
    view.adjustSize();
    QImage ours = surface(view.size(), scale);
    QImage yardstick = surface(view.size(), scale);
    const double start = threadMicroseconds();
    paintView(view, ours);
    const double first = threadMicroseconds() - start;
    std::vector<double> oursTimes;
    std::vector<double> yardstickTimes;
    for (int round = 0; round < rounds; ++round) {
        addBlock([&] { paintView(view, ours); }, oursTimes);
        addBlock([&] { paintDrawn(drawn, yardstick); }, yardstickTimes);
    }
    requireContent(ours);
    requireContent(yardstick);
    if (qEnvironmentVariableIsSet("SAVE_PNG")) {
        ours.save(qEnvironmentVariable("SAVE_PNG") + u"-ours-%1x.png"_s.arg(scale));
        yardstick.save(qEnvironmentVariable("SAVE_PNG") + u"-yardstick-%1x.png"_s.arg(scale));
    }
    const Comparison repaint{"popover, full repaint at scale " + std::to_string(scale), "us", median(oursTimes),
                             median(yardstickTimes), bar};
    const bool isMet = repaint.report();
    std::printf("%-50s %9.4g us\n", "  of which the first one, once", first);
    return isMet;
}

/// KiB of memory that are this process's alone.
double privateMemory() {
    QFile rollup(u"/proc/self/smaps_rollup"_s);
    if (!rollup.open(QIODevice::ReadOnly))
        return 0;
    double sum = 0;
    for (const QByteArray& line : rollup.readAll().split('\n')) {
        if (line.startsWith("Private_"))
            sum += line.simplified().split(' ').value(1).toDouble();
    }
    return sum;
}

/// CPU microseconds until the first picture.
double openOnce(Program& program) {
    const double start = threadMicroseconds();
    PopoverView view(program.store, program.settings);
    view.show();
    view.adjustSize();
    QImage image = surface(view.size(), 2);
    paintView(view, image);
    return threadMicroseconds() - start;
}

/// The allocator takes a few pages now and then. What a popover leaves behind comes with every series.
bool leavesNothingBehind(Program& program) {
    constexpr int openings = 20;
    constexpr int firstSeries = 5; // They fill what the libraries keep.
    constexpr int series = 20;
    std::vector<double> times;
    std::vector<double> growth;
    for (int i = 0; i < firstSeries + series; ++i) {
        const double before = privateMemory();
        for (int opening = 0; opening < openings; ++opening) {
            times.push_back(openOnce(program));
            QCoreApplication::processEvents(); // What the window system has to say of it waits otherwise.
        }
        if (i >= firstSeries)
            growth.push_back(privateMemory() - before);
    }
    std::printf("%-50s %9.4g us\n", "made and painted anew at scale 2", median(times));
    return Limit{"popover, private memory grown over 20 openings", "KiB", median(growth), 0}.report();
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 11;
    keepLargeBlocksApart(); // As the program does: else the picture that is painted here would count.
    Program program;
    const Snapshot snapshot = market();
    program.store.snapshot = snapshot;
    program.store.ethereumBlockNumber = 21000000;
    program.store.lastUpdated = QDateTime::currentDateTimeUtc();
    const DrawnPopover drawn(snapshot);
    Figures::begin("CPU of a repaint, beside the same drawn straight away; medians of " + std::to_string(rounds) +
                   " blocks of " + std::to_string(repaintsPerBlock));
    const bool isMetAt1 = compare(program, drawn, 1, rounds);
    const bool isMetAt2 = compare(program, drawn, 2, rounds);
    return leavesNothingBehind(program) && isMetAt1 && isMetAt2 ? 0 : 1;
}
