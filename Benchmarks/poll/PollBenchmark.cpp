// CPU per request, ours beside the yardstick, against nginx on this machine, with the system's certificate store and
// the anchor in force. Rounds alternate between the two, so that whatever else the machine does meets both; medians
// count. PollBenchmark [ROUNDS [REQUESTS]]   exits with 1 where a bar is missed, with 2 where nothing could be measured
#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

struct Figures {
    double first;
    double median;
    double switches;
};

struct Case {
    const char* name;
    const char* path;
    double bar;
};

[[noreturn]] void giveUp(const QString& why) {
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::exit(2);
}

/// An answer of the size of a node's: 20 blocks, three percentiles.
QByteArray answer() {
    const QByteArray quantities = QByteArray(R"("0x2fa43c10",)").repeated(20);
    const QByteArray ratios = QByteArray("0.4837261950612738,").repeated(19);
    const QByteArray rewards = QByteArray(R"(["0x989680","0x3b9aca0","0x59682f00"],)").repeated(19);
    return R"({"jsonrpc":"2.0","id":1,"result":{"oldestBlock":"0x1406f40","baseFeePerGas":[)" + quantities +
           R"("0x2fa43c10"],"gasUsedRatio":[)" + ratios + R"(0.5],"reward":[)" + rewards +
           R"(["0x989680","0x3b9aca0","0x59682f00"]]}})";
}

QByteArray configuration(const QByteArray& folder, quint16 port) {
    const QByteArray certificate = TORVANE_TEST_CERTIFICATES "/localhost";
    const QByteArray ok = "return 200 '" + answer() + "'; } ";
    QByteArray temporary;
    for (const char* kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
        temporary += QByteArray(kind) + "_temp_path " + folder + '/' + kind + "; ";
    return "daemon off; master_process off; pid " + folder + "/pid; error_log " + folder +
           "/error.log; events {} http { access_log off; default_type application/json; keepalive_requests 1000000; " +
           temporary + "server { listen 127.0.0.1:" + QByteArray::number(port) + " ssl; ssl_certificate " +
           certificate + ".pem; ssl_certificate_key " + certificate + ".key; ssl_session_cache shared:S:1m; " +
           "location /close { keepalive_timeout 0; " + ok + "location / { " + ok + "} }";
}

quint16 freePort() {
    QTcpServer probe;
    if (!probe.listen(QHostAddress::LocalHost))
        giveUp(probe.errorString());
    return probe.serverPort();
}

void waitUntilItListens(quint16 port) {
    for (int attempt = 0; attempt < 1000; ++attempt) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
        if (socket.waitForConnected(1000))
            return;
    }
    giveUp(QStringLiteral("nginx (package nginx-light) does not listen"));
}

Figures measure(const QString& program, const QString& url, const QString& requests) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program, {url, requests});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        giveUp(program + QStringLiteral(" failed"));
    const QList<QByteArray> words = process.readAllStandardOutput().simplified().split(' ');
    const auto number = [&](qsizetype at) { return words.value(at).toDouble(); };
    return {.first = number(1), .median = number(3), .switches = number(5)};
}

double median(const std::vector<Figures>& rounds, double Figures::*figure) {
    std::vector<double> values;
    for (const Figures& round : rounds)
        values.push_back(round.*figure);
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool compare(const Case& which, quint16 port, int rounds, const QString& requests) {
    const QString url = QStringLiteral("https://localhost:") + QString::fromLatin1(QByteArray::number(port)) +
                        QLatin1String(which.path);
    std::vector<Figures> ours;
    std::vector<Figures> yardstick;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(measure(QStringLiteral("PollOurs"), url, requests));
        yardstick.push_back(measure(QStringLiteral("PollYardstick"), url, requests));
    }
    const double mine = median(ours, &Figures::median);
    const double theirs = median(yardstick, &Figures::median);
    const bool isMet = mine <= which.bar * theirs;
    std::printf("%-20s ours %.4f ms  yardstick %.4f ms  ratio %.2f  bar %.2f  %s\n", which.name, mine, theirs,
                mine / theirs, which.bar, isMet ? "met" : "MISSED");
    std::printf("%-20s first request %.2f and %.2f ms, voluntary switches per request %.1f and %.1f\n", "",
                median(ours, &Figures::first), median(yardstick, &Figures::first), median(ours, &Figures::switches),
                median(yardstick, &Figures::switches));
    return isMet;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    const int rounds = arguments.value(1, QStringLiteral("7")).toInt();
    const QString requests = arguments.value(2, QStringLiteral("300"));
    const QTemporaryDir folder;
    const quint16 port = freePort();
    QFile file(folder.filePath(QStringLiteral("nginx.conf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(configuration(folder.path().toUtf8(), port)) < 0 ||
        !file.flush())
        giveUp(file.errorString());
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedChannels);
    server.start(QStringLiteral("/usr/sbin/nginx"),
                 {QStringLiteral("-c"), file.fileName(), QStringLiteral("-p"), folder.path(), QStringLiteral("-e"),
                  folder.filePath(QStringLiteral("error.log"))});
    waitUntilItListens(port);
    std::printf("CPU per request, medians of %d rounds of %s requests\n", rounds, qPrintable(requests));
    const bool isHotMet = compare({"kept alive", "/", 0.6}, port, rounds, requests);
    const bool isClosingMet = compare({"closed each time", "/close", 0.5}, port, rounds, requests);
    server.kill();
    server.waitForFinished();
    return isHotMet && isClosingMet ? 0 : 1;
}
