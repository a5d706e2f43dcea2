#include "Support/StandInConnection.h"

#include <QSslConfiguration>

#include <sys/socket.h>

namespace torvane {

namespace {

constexpr qsizetype fillingAhead = 65536; // Bytes kept on the way while filling endlessly.

QList<std::pair<QByteArray, QByteArray>> parseFields(const QList<QByteArray>& lines) {
    QList<std::pair<QByteArray, QByteArray>> fields;
    for (const QByteArray& line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            fields.append({line.first(colon), line.sliced(colon + 1).trimmed()});
    }
    return fields;
}

} // namespace

StandInConnection::StandInConnection(QSslSocket* socket, int number, StandInServer& server)
    : QObject(&server)
    , m_socket(socket)
    , m_server(server)
    , m_number(number) {
    m_socket->setParent(this);
    connect(m_socket, &QSslSocket::readyRead, this, &StandInConnection::read);
    connect(m_socket, &QSslSocket::disconnected, this, [this] { Q_EMIT ended(this); });
    connect(m_socket, &QSslSocket::encryptedBytesWritten, this, [this] {
        if (m_isAnswering && m_unsent.isEmpty() && m_answer.ending == StandInAnswer::Ending::endlessFilling)
            fill();
    });
    connect(&m_step, &QTimer::timeout, this, &StandInConnection::writeStep);
    m_step.setTimerType(Qt::PreciseTimer);
    // The first request may have come with the end of the handshake. Queued, so that the server has heard of us first.
    QMetaObject::invokeMethod(this, &StandInConnection::read, Qt::QueuedConnection);
}

void StandInConnection::end(StandInAnswer::Ending ending) {
    m_step.stop();
    if (ending == StandInAnswer::Ending::closeNotify) {
        m_socket->disconnectFromHost();
        return;
    }
    if (ending == StandInAnswer::Ending::reset) {
        const linger none{.l_onoff = 1, .l_linger = 0};
        ::setsockopt(static_cast<int>(m_socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &none, sizeof none);
    }
    m_socket->flush();
    m_socket->abort(); // Closes the TCP socket under TLS, so that no close_notify is sent.
}

void StandInConnection::read() {
    if (!m_socket->isOpen())
        return; // It was called for before the connection ended.
    m_received += m_socket->readAll();
    if (m_isAnswering)
        return;
    StandInRequest request;
    const qsizetype used = parse(request);
    if (used == 0)
        return;
    m_received.remove(0, used);
    m_isAnswering = true;
    begin(m_server.answer(request), request.method == "HEAD");
}

/// The bytes that the first whole request takes; 0 while it has not come in whole.
qsizetype StandInConnection::parse(StandInRequest& request) const {
    const qsizetype headEnd = m_received.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return 0;
    const QList<QByteArray> lines = m_received.first(headEnd).replace("\r\n", "\n").split('\n');
    const QList<QByteArray> start = lines.first().split(' ');
    request.method = start.value(0);
    request.target = start.value(1);
    request.headers = parseFields(lines.sliced(1));
    request.protocol = m_socket->sslConfiguration().nextNegotiatedProtocol();
    request.connection = m_number;
    const qsizetype length = request.header("Content-Length").toLongLong();
    if (m_received.size() < headEnd + 4 + length)
        return 0;
    request.body = m_received.sliced(headEnd + 4, length);
    return headEnd + 4 + length;
}

void StandInConnection::begin(const StandInAnswer& answer, bool isHead) {
    m_answer = answer;
    m_unsent = answer.wire(isHead);
    if (answer.bytesPerStep > 0)
        m_step.start(answer.step);
    else
        writeStep();
}

void StandInConnection::writeStep() {
    const qsizetype size = m_answer.bytesPerStep > 0 ? qMin(m_answer.bytesPerStep, m_unsent.size()) : m_unsent.size();
    m_socket->write(m_unsent.first(size));
    m_unsent.remove(0, size);
    if (!m_unsent.isEmpty())
        return;
    m_step.stop();
    finishAnswer();
}

void StandInConnection::finishAnswer() {
    using Ending = StandInAnswer::Ending;
    switch (m_answer.ending) {
    case Ending::keepAlive:
        m_isAnswering = false;
        // Queued: answers to requests that came in together must not nest.
        QMetaObject::invokeMethod(this, &StandInConnection::read, Qt::QueuedConnection);
        return;
    case Ending::silence:
        return;
    case Ending::endlessFilling:
        fill();
        return;
    case Ending::closeNotify:
    case Ending::abruptClose:
    case Ending::reset:
        end(m_answer.ending);
    }
}

void StandInConnection::fill() {
    while (m_socket->bytesToWrite() + m_socket->encryptedBytesToWrite() < fillingAhead) {
        if (m_socket->write(m_answer.filling) <= 0)
            return; // The other side is gone.
    }
}

} // namespace torvane
