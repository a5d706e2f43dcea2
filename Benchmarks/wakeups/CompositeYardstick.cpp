// The yardstick of the whole program: Qt's own tray icon, and Qt's own client asking the nodes each twelve seconds and
// the relay each minute; answers are parsed and dropped. CompositeYardstick ORIGIN
#include <QApplication>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPainter>
#include <QSslConfiguration>
#include <QSystemTrayIcon>
#include <QTimer>

namespace {

QNetworkRequest request(const QString& origin, const QString& path) {
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.addCaCertificates(QStringLiteral(TORVANE_TEST_CERTIFICATES "/ca.pem"));
    QNetworkRequest request(QUrl(origin + path));
    request.setSslConfiguration(tls);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setTransferTimeout(10000);
    return request;
}

QIcon icon() {
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::blue);
    painter.drawEllipse(4, 4, 56, 56);
    return QIcon(pixmap);
}

void parse(QNetworkReply* reply) {
    if (reply->error() != QNetworkReply::NoError || QJsonDocument::fromJson(reply->readAll()).isNull()) {
        std::fprintf(stderr, "%s\n", qPrintable(reply->errorString()));
        QCoreApplication::exit(1);
    }
    reply->deleteLater();
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QString origin = application.arguments().at(1);
    const QNetworkRequest node = request(origin, QStringLiteral("/"));
    const QNetworkRequest relay = request(origin, QStringLiteral("/snapshot.json"));
    QNetworkAccessManager manager;
    QObject::connect(&manager, &QNetworkAccessManager::finished, &application, &parse);
    const auto askNode = [&] {
        manager.post(node,
                     R"({"jsonrpc":"2.0","id":1,"method":"eth_feeHistory","params":["0x14","latest",[15,50,90]]})");
    };
    const auto askRelay = [&] { manager.get(relay); };
    QTimer everyBlock;
    QTimer everyMinute;
    QObject::connect(&everyBlock, &QTimer::timeout, &application, askNode);
    QObject::connect(&everyMinute, &QTimer::timeout, &application, askRelay);
    everyBlock.start(12000); // Coarse, as timers are by default.
    everyMinute.start(60000);
    QTimer::singleShot(0, &application, askNode);
    QTimer::singleShot(0, &application, askRelay);
    QSystemTrayIcon tray(icon());
    tray.setToolTip(QStringLiteral("composite"));
    tray.show();
    return QApplication::exec();
}
