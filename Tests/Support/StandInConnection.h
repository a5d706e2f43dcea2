#pragma once

#include "Support/StandInServer.h"

#include <QSslSocket>
#include <QTimer>

namespace torvane {

/// One connection of a stand-in server: reads requests, one after the other, and puts the answers on the wire.
class StandInConnection final : public QObject {
    Q_OBJECT

public:
    StandInConnection(QSslSocket* socket, int number, StandInServer& server);

    void end(StandInAnswer::Ending ending);

Q_SIGNALS:
    void ended(StandInConnection* connection);

private:
    void read();
    qsizetype parse(StandInRequest& request) const;
    void begin(const StandInAnswer& answer, bool isHead);
    void writeStep();
    void finishAnswer();
    void fill();

    QSslSocket* m_socket;
    StandInServer& m_server;
    int m_number;
    QByteArray m_received;
    StandInAnswer m_answer;
    QByteArray m_unsent;
    bool m_isAnswering = false;
    QTimer m_step;
};

} // namespace torvane
