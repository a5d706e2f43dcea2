// What reading the path data of two icon sets costs the CPU, beside Qt's SVG module. That reads documents alone: its
// figure is the time for a document whose path has a d attribute less that for one whose attribute has another name, so
// that what XML costs falls away. Icons alone count that both read alike. The three take turns; medians of all rounds.
// SVGPathBenchmark [ROUNDS]   exits with 1 where the bar is missed, with 2 where a figure is wrong
#include "Comparison.h"
#include "Design/SVGPath.h"
#include "Icons/IconPaths.h"
#include "Icons/QtSVGPath.h"
#include "ThreadCPU.h"

#include <QGuiApplication>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

using namespace torvane;

namespace {

QStringList comparableIcons() {
    QStringList icons = iconPaths();
    icons.removeIf([](const QString& path) { return !isReadAlike(path); });
    return icons;
}

QList<QByteArray> documents(const QStringList& icons, const char* attribute) {
    QList<QByteArray> result;
    for (const QString& icon : icons)
        result.append(svgDocument(icon, attribute));
    return result;
}

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::exit(2);
}

void loadAll(const QList<QByteArray>& documents) {
    for (const QByteArray& document : documents) {
        QSvgRenderer renderer;
        if (!renderer.load(document))
            fail("Qt did not load a document");
    }
}

void readAll(const QStringList& icons) {
    for (const QString& icon : icons) {
        if (SVGPath::path(icon).isEmpty())
            fail("An icon was not read");
    }
}

/// CPU milliseconds of this thread.
template <class Work>
double milliseconds(const Work& work) {
    const double start = threadMicroseconds();
    work();
    return (threadMicroseconds() - start) / 1e3;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 11;
    const QStringList icons = comparableIcons();
    const QList<QByteArray> withPath = documents(icons, "d");
    const QList<QByteArray> withoutPath = documents(icons, "x");
    std::vector<double> ours;
    std::vector<double> paths;
    std::vector<double> others;
    for (int round = 0; round <= rounds; ++round) {
        const double read = milliseconds([&] { readAll(icons); });
        const double loaded = milliseconds([&] { loadAll(withPath); });
        const double loadedWithout = milliseconds([&] { loadAll(withoutPath); });
        if (round == 0)
            continue; // Caches are cold.
        ours.push_back(read);
        paths.push_back(loaded);
        others.push_back(loadedWithout);
    }
    qsizetype characters = 0;
    for (const QString& icon : icons)
        characters += icon.size();
    Figures::begin("Characters of path data a second, beside Qt's SVG module; medians of " + std::to_string(rounds) +
                   " rounds of " + std::to_string(icons.size()) + " icons");
    const double thousands = static_cast<double>(characters) / 1e3; // In so many milliseconds: millions a second.
    const Comparison speed{
        "path data read", "M/s", thousands / median(ours), thousands / (median(paths) - median(others)), 1.3,
        Bar::atLeast};
    return speed.report() ? 0 : 1;
}
