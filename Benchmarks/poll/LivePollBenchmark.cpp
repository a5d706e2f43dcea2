// CPU of one live poll of Ethereum, from the request to the published figures and a badge that finds its look
// unchanged, beside the same question asked with Qt's own client and parser, and beside curl and jq as a script would
// call them. Rounds alternate, medians count. LivePollBenchmark [ROUNDS [POLLS]] exits with 1 where a bar is missed,
// with 2 where nothing could be measured
#include "Comparison.h"
#include "PollMeasure.h"
#include "PollRig.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

/// The three tiers, as the program derives them.
constexpr const char* tiersFilter = R"(
def digit: if . >= 97 then . - 87 elif . >= 65 then . - 55 else . - 48 end;
def gwei: .[2:] | explode | reduce .[] as $each (0; . * 16 + ($each | digit)) | . / 1e9;
.result as $history | ($history.baseFeePerGas[-2] | gwei) as $base
| [range(3) as $tier | $base + ([$history.reward[][$tier] | gwei] | sort | .[length / 2 | floor])])";

double childrenCpu() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

/// CPU milliseconds of one poll by curl and jq.
double measureScript(const QString& url) {
    const double before = childrenCpu();
    QProcess curl;
    QProcess jq;
    curl.setStandardOutputProcess(&jq);
    jq.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    curl.start(QStringLiteral("curl"), {QStringLiteral("--silent"), QStringLiteral("--cacert"),
                                        QStringLiteral(TORVANE_TEST_CERTIFICATES "/ca.pem"), QStringLiteral("--header"),
                                        QStringLiteral("Content-Type: application/json"), QStringLiteral("--data"),
                                        QString::fromLatin1(PollMeasure::body()), url});
    jq.start(QStringLiteral("jq"), {QStringLiteral("-r"), QString::fromLatin1(tiersFilter)});
    const bool haveEnded = curl.waitForFinished(-1) && jq.waitForFinished(-1);
    if (!haveEnded || curl.exitCode() != 0 || jq.exitCode() != 0 || !jq.readAllStandardOutput().startsWith('['))
        giveUp(QStringLiteral("curl and jq brought no figures"));
    return childrenCpu() - before;
}

std::vector<double> measureScripts(const QString& url, int polls) {
    std::vector<double> each;
    for (int poll = 0; poll < polls; ++poll)
        each.push_back(measureScript(url));
    return each;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const int rounds = app.arguments().value(1, QStringLiteral("7")).toInt();
    const QString polls = app.arguments().value(2, QStringLiteral("300"));
    const NodeServer server;
    const QString url = server.url("/");
    std::vector<PollFigures> ours;
    std::vector<PollFigures> yardstick;
    std::vector<double> script;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(measurePolls(QStringLiteral("LivePollOurs"), {url, polls}));
        yardstick.push_back(measurePolls(QStringLiteral("PollYardstick"), {url, polls, QStringLiteral("tiers")}));
        script.push_back(median(measureScripts(url, 5)));
    }
    const PollFigures mine = medianOf(ours);
    const PollFigures theirs = medianOf(yardstick);
    Figures::begin("CPU per live poll, from the request to the badge; medians of " + std::to_string(rounds) +
                   " rounds of " + polls.toStdString() + " polls");
    const Comparison beside{"live poll, beside Qt's client and parser", "ms", mine.median, theirs.median, 0.7};
    const Comparison besideScript{"live poll, beside curl and jq", "ms", mine.median, median(script), 1.0 / 30};
    const bool isMet = beside.report();
    const bool isScriptMet = besideScript.report();
    std::printf("    first poll %.2f and %.2f ms, voluntary switches per poll %.1f and %.1f\n", mine.first,
                theirs.first, mine.switches, theirs.switches);
    return isMet && isScriptMet ? 0 : 1;
}
