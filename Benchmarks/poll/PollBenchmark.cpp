// CPU per request, ours beside the yardstick, against nginx on this machine, with the system's certificate store and
// the anchor in force. Rounds alternate between the two, so that whatever else the machine does meets both; medians
// count. PollBenchmark [ROUNDS [REQUESTS]]   exits with 1 where a bar is missed, with 2 where nothing could be measured
#include "Comparison.h"
#include "PollRig.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

struct Case {
    const char* name;
    const char* path;
    double bar;
};

bool compare(const Case& which, const NodeServer& server, int rounds, const QString& requests) {
    const QStringList arguments{server.url(which.path), requests};
    std::vector<PollFigures> ours;
    std::vector<PollFigures> yardstick;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(measurePolls(QStringLiteral("PollOurs"), arguments));
        yardstick.push_back(measurePolls(QStringLiteral("PollYardstick"), arguments));
    }
    const PollFigures mine = medianOf(ours);
    const PollFigures theirs = medianOf(yardstick);
    const bool isMet = Comparison{which.name, "ms", mine.median, theirs.median, which.bar}.report();
    std::printf("    first request %.2f and %.2f ms, voluntary switches per request %.1f and %.1f\n", mine.first,
                theirs.first, mine.switches, theirs.switches);
    return isMet;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    const int rounds = arguments.value(1, QStringLiteral("7")).toInt();
    const QString requests = arguments.value(2, QStringLiteral("300"));
    const NodeServer server;
    Figures::begin("CPU per request, beside Qt's client; medians of " + std::to_string(rounds) + " rounds of " +
                   requests.toStdString() + " requests");
    const bool isHotMet = compare({"request, kept alive", "/", 0.6}, server, rounds, requests);
    const bool isClosingMet = compare({"request, closed each time", "/close", 0.5}, server, rounds, requests);
    return isHotMet && isClosingMet ? 0 : 1;
}
