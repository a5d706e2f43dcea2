// Posts the same request again and again through NetworkClient: PollOurs URL COUNT
#include "Chain/NetworkClient.h"
#include "PollMeasure.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <csignal>

using namespace torvane;

namespace {

Task<> poll(Request request, std::size_t count, PollMeasure& measure) {
    try {
        while (measure.counted() <= count) {
            Task<QByteArray> exchange = NetworkClient::request(request);
            co_await exchange;
            measure.count();
        }
        measure.print();
        QCoreApplication::quit();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        QCoreApplication::exit(1);
    }
}

} // namespace

int main(int argc, char** argv) {
    PollMeasure measure;
    std::signal(SIGPIPE, SIG_IGN); // As the program does.
    QCoreApplication app(argc, argv);
    QLoggingCategory::setFilterRules(
        QStringLiteral("org.velisk.Torvane.net.info=false")); // The yardstick logs nothing.
    const QStringList arguments = app.arguments();
    const Request request{.url = QUrl(arguments.at(1)),
                          .method = "POST",
                          .body = PollMeasure::body(),
                          .headers = {{"Content-Type", "application/json"}},
                          .timeout = std::chrono::seconds(10),
                          .bodyLimit = rpcBodyLimit};
    TaskScope scope;
    QMetaObject::invokeMethod(
        &app, [&] { scope.run(poll(request, arguments.at(2).toULong(), measure)); }, Qt::QueuedConnection);
    return QCoreApplication::exec();
}
