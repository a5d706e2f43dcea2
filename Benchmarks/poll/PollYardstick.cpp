// The yardstick: the same through QNetworkAccessManager, HTTP/1.1, kept alive, the system's certificates and the anchor
// in force. PollYardstick URL COUNT
#include "PollMeasure.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QTimer>

namespace {

QNetworkRequest request(const QUrl& url) {
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.addCaCertificates(QStringLiteral(TORVANE_TEST_CERTIFICATES "/ca.pem"));
    QNetworkRequest request(url);
    request.setSslConfiguration(tls);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
    request.setHeader(QNetworkRequest::UserAgentHeader, QByteArray("torvane/0.3.0 (macOS)"));
    request.setTransferTimeout(10000);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return request;
}

} // namespace

int main(int argc, char** argv) {
    PollMeasure measure;
    QCoreApplication app(argc, argv);
    const std::size_t count = app.arguments().at(2).toULong();
    const QNetworkRequest each = request(QUrl(app.arguments().at(1)));
    QNetworkAccessManager manager;
    const auto post = [&] { manager.post(each, PollMeasure::body()); };
    QObject::connect(&manager, &QNetworkAccessManager::finished, &app, [&](QNetworkReply* reply) {
        const QByteArray body = reply->readAll();
        reply->deleteLater();
        if (reply->error() != QNetworkReply::NoError || body.isEmpty()) {
            std::fprintf(stderr, "%s\n", qPrintable(reply->errorString()));
            QCoreApplication::exit(1);
            return;
        }
        measure.count();
        if (measure.counted() <= count)
            return QTimer::singleShot(0, &app, post);
        measure.print();
        QCoreApplication::quit();
    });
    QTimer::singleShot(0, &app, post);
    return QCoreApplication::exec();
}
