// The yardstick: the same through QNetworkAccessManager, HTTP/1.1, kept alive, the system's certificates and the anchor
// in force. PollYardstick URL COUNT [tiers]   with "tiers" each answer is parsed, and the three fee tiers derived from
// it
#include "PollMeasure.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
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

double gwei(const QJsonValue& quantity) {
    return static_cast<double>(quantity.toString().mid(2).toULongLong(nullptr, 16)) / 1e9;
}

/// Base fee and medians of the priority fees, added up: the sum is all that anybody asks for.
double tiers(const QByteArray& body) {
    const QJsonObject history = QJsonDocument::fromJson(body).object().value(QLatin1String("result")).toObject();
    const QJsonArray fees = history.value(QLatin1String("baseFeePerGas")).toArray();
    const QJsonArray rewards = history.value(QLatin1String("reward")).toArray();
    double sum = 0;
    for (int tier = 0; tier < 3; ++tier) {
        std::vector<double> paid;
        for (const QJsonValue& row : rewards)
            paid.push_back(gwei(row.toArray().at(tier)));
        std::sort(paid.begin(), paid.end());
        sum += gwei(fees.at(fees.size() - 2)) + paid.at(paid.size() / 2);
    }
    return sum;
}

} // namespace

int main(int argc, char** argv) {
    PollMeasure measure;
    QCoreApplication app(argc, argv);
    const std::size_t count = app.arguments().at(2).toULong();
    const bool derivesTiers = app.arguments().value(3) == QStringLiteral("tiers");
    const QNetworkRequest each = request(QUrl(app.arguments().at(1)));
    QNetworkAccessManager manager;
    const auto post = [&] { manager.post(each, PollMeasure::body()); };
    QObject::connect(&manager, &QNetworkAccessManager::finished, &app, [&](QNetworkReply* reply) {
        const QByteArray body = reply->readAll();
        reply->deleteLater();
        if (reply->error() != QNetworkReply::NoError || body.isEmpty() || (derivesTiers && tiers(body) <= 0)) {
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
