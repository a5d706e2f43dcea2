#include "DocumentTreeExtraction.h"
#include "SnapshotDocuments.h"
#include "Support/JSON.h"

#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

using namespace torvane;

namespace {

constexpr double requiredRatio = 1.0;
constexpr int rounds = 15;
constexpr double secondsPerRound = 0.03;

struct Figures {
    double ours; ///< megabytes of document per second
    double tree;

    double ratio() const { return ours / tree; }
};

/// Megabytes per second of one round.
template <class Decode>
double speed(const QByteArray& document, Decode decode) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    double elapsed = 0;
    qsizetype bytes = 0;
    while (elapsed < secondsPerRound) {
        const Snapshot snapshot = decode(document);
        if (snapshot.generatedAt.isEmpty()) // Never so; it keeps the work from being left out.
            std::abort();
        bytes += document.size();
        elapsed = std::chrono::duration<double>(Clock::now() - start).count();
    }
    return static_cast<double>(bytes) / elapsed / 1e6;
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + rounds / 2, values.end());
    return values[rounds / 2];
}

/// Medians of rounds in turn, so that a busy moment of the machine falls upon both.
Figures measure(const QByteArray& document) {
    std::vector<double> ours;
    std::vector<double> tree;
    for (int i = 0; i < rounds; ++i) {
        ours.push_back(speed(document, [](const QByteArray& bytes) { return JSON::decode<Snapshot>(bytes); }));
        tree.push_back(speed(document, [](const QByteArray& bytes) { return extractFromTree(bytes); }));
    }
    return {median(ours), median(tree)};
}

bool report(const char* name, const QByteArray& document) {
    if (JSON::encode(JSON::decode<Snapshot>(document)) != JSON::encode(extractFromTree(document))) {
        std::fprintf(stderr, "%s: the two read different records\n", name);
        return false;
    }
    const Figures figures = measure(document);
    const bool met = figures.ratio() >= requiredRatio;
    std::printf("%-26s %9lld %9.0f %9.0f %7.2f %5.1f  %s\n", name, static_cast<long long>(document.size()),
                figures.ours, figures.tree, figures.ratio(), requiredRatio, met ? "yes" : "NO");
    std::fflush(stdout);
    return met;
}

bool reportFile(const char* path) {
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: cannot be read\n", path);
        return false;
    }
    return report(path, file.readAll());
}

} // namespace

/// Decodes generated documents, or the files that are named, and fails when a bar is missed.
int main(int count, char** arguments) {
    std::printf("%-26s %9s %9s %9s %7s %5s  %s\n", "document", "bytes", "ours MB/s", "tree MB/s", "ratio", "bar",
                "met");
    bool met = true;
    for (int i = 1; i < count; ++i)
        met &= reportFile(arguments[i]);
    if (count == 1) {
        for (const DocumentShape& shape : measuredShapes())
            met &= report(shape.name.c_str(), snapshotDocument(shape));
    }
    return met ? 0 : 1;
}
