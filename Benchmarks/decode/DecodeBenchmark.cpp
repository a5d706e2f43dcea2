#include "Comparison.h"
#include "DocumentTreeExtraction.h"
#include "SnapshotDocuments.h"
#include "Support/JSON.h"
#include "ThreadCPU.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace torvane;

namespace {

constexpr double requiredRatio = 1.0;
constexpr int rounds = 15;
constexpr double secondsPerRound = 0.03;

/// Megabytes per second of one round.
template <class Decode>
double speed(const QByteArray& document, Decode decode) {
    const double start = threadMicroseconds();
    double elapsed = 0;
    qsizetype bytes = 0;
    while (elapsed < secondsPerRound) {
        const Snapshot snapshot = decode(document);
        if (snapshot.generatedAt.isEmpty()) // Never so; it keeps the work from being left out.
            std::abort();
        bytes += document.size();
        elapsed = (threadMicroseconds() - start) / 1e6;
    }
    return static_cast<double>(bytes) / elapsed / 1e6;
}

/// Medians of rounds in turn, so that a busy moment of the machine falls upon both.
Comparison measure(const char* name, const QByteArray& document) {
    std::vector<double> ours;
    std::vector<double> tree;
    for (int i = 0; i < rounds; ++i) {
        ours.push_back(speed(document, [](const QByteArray& bytes) { return JSON::decode<Snapshot>(bytes); }));
        tree.push_back(speed(document, [](const QByteArray& bytes) { return extractFromTree(bytes); }));
    }
    return {std::string("decode, ") + name, "MB/s", median(ours), median(tree), requiredRatio, Bar::atLeast};
}

bool report(const char* name, const QByteArray& document) {
    if (JSON::encode(JSON::decode<Snapshot>(document)) != JSON::encode(extractFromTree(document))) {
        std::fprintf(stderr, "%s: the two read different records\n", name);
        std::exit(2);
    }
    return measure(name, document).report();
}

bool reportFile(const char* path) {
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: cannot be read\n", path);
        std::exit(2);
    }
    return report(path, file.readAll());
}

} // namespace

/// Decodes generated documents, or the files that are named. Exits with 1 when a bar is missed, with 2 when the two
/// decoders differ.
int main(int count, char** arguments) {
    Figures::begin("Documents decoded, 9 networks x 288 points where not said, beside RapidJSON's tree; medians of " +
                   std::to_string(rounds) + " rounds");
    bool met = true;
    for (int i = 1; i < count; ++i)
        met &= reportFile(arguments[i]);
    if (count == 1) {
        for (const DocumentShape& shape : measuredShapes())
            met &= report(shape.name.c_str(), snapshotDocument(shape));
    }
    return met ? 0 : 1;
}
