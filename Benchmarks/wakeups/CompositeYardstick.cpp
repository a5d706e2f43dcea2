// The yardstick of the whole program: Qt's own tray icon, and Qt's own client asking the nodes each twelve seconds and
// the relay each minute. The icon and its tooltip say the newest base fee, as a plain program would do it: while the
// figure stays what it is, nothing is said. The relay's document is parsed and dropped. CompositeYardstick ORIGIN
#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
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

QIcon icon(const QString& figure) {
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::blue);
    painter.drawEllipse(4, 4, 56, 56);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, figure);
    return QIcon(pixmap);
}

QString baseFee(const QJsonDocument& answer) {
    const QJsonArray fees = answer[QStringLiteral("result")][QStringLiteral("baseFeePerGas")].toArray();
    const qulonglong wei = fees.size() < 2 ? 0 : fees.at(fees.size() - 2).toString().toULongLong(nullptr, 16);
    return QString::fromLatin1(QByteArray::number(static_cast<double>(wei) / 1e9, 'f', 1));
}

QJsonDocument parse(QNetworkReply* reply) {
    const QJsonDocument answer = QJsonDocument::fromJson(reply->readAll());
    if (reply->error() != QNetworkReply::NoError || answer.isNull()) {
        std::fprintf(stderr, "%s\n", qPrintable(reply->errorString()));
        QCoreApplication::exit(1);
    }
    reply->deleteLater();
    return answer;
}

void say(const QString& figure, QSystemTrayIcon& tray) {
    if (tray.toolTip() == figure)
        return;
    tray.setIcon(icon(figure));
    tray.setToolTip(figure);
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QString origin = application.arguments().at(1);
    const QNetworkRequest node = request(origin, QStringLiteral("/"));
    const QNetworkRequest relay = request(origin, QStringLiteral("/snapshot.json"));
    QNetworkAccessManager manager;
    QSystemTrayIcon tray(icon({}));
    const auto take = [&](QNetworkReply* reply) {
        const bool isNode = reply->operation() == QNetworkAccessManager::PostOperation;
        const QJsonDocument answer = parse(reply);
        if (isNode)
            say(baseFee(answer), tray);
    };
    QObject::connect(&manager, &QNetworkAccessManager::finished, &application, take);
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
    tray.show();
    return QApplication::exec();
}
