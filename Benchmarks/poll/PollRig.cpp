#include "PollRig.h"

#include "Comparison.h"

#include <QCoreApplication>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>

#include <cstdio>

namespace {

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

double median(const std::vector<PollFigures>& rounds, double PollFigures::*figure) {
    std::vector<double> values;
    for (const PollFigures& round : rounds)
        values.push_back(round.*figure);
    return ::median(values);
}

} // namespace

void giveUp(const QString& why) {
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::exit(2);
}

NodeServer::NodeServer()
    : m_port(freePort()) {
    QFile file(m_folder.filePath(QStringLiteral("nginx.conf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(configuration(m_folder.path().toUtf8(), m_port)) < 0 ||
        !file.flush())
        giveUp(file.errorString());
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.start(QStringLiteral("/usr/sbin/nginx"),
                    {QStringLiteral("-c"), file.fileName(), QStringLiteral("-p"), m_folder.path(), QStringLiteral("-e"),
                     m_folder.filePath(QStringLiteral("error.log"))});
    waitUntilItListens(m_port);
}

NodeServer::~NodeServer() {
    m_process.kill();
    m_process.waitForFinished(-1);
}

QString NodeServer::url(const char* path) const {
    return QStringLiteral("https://localhost:") + QString::fromLatin1(QByteArray::number(m_port)) + QLatin1String(path);
}

PollFigures measurePolls(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        giveUp(program + QStringLiteral(" failed"));
    const QList<QByteArray> words = process.readAllStandardOutput().simplified().split(' ');
    const auto number = [&](qsizetype at) { return words.value(at).toDouble(); };
    return {.first = number(1), .median = number(3), .switches = number(5)};
}

PollFigures medianOf(const std::vector<PollFigures>& rounds) {
    return {.first = median(rounds, &PollFigures::first),
            .median = median(rounds, &PollFigures::median),
            .switches = median(rounds, &PollFigures::switches)};
}
