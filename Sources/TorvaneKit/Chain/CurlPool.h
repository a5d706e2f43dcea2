#pragma once

#include "Chain/CurlLibrary.h"

#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <unordered_map>
#include <unordered_set>

namespace torvane {

class Transfer;

/// One libcurl multi handle on the main loop: transfers in flight and connections kept for the next ones.
/// A notifier per socket and one timer drive it; nothing runs while nothing happens. An idle connection has no
/// notifier: a server that closes it wakes nobody, libcurl finds out when it next needs one.
class CurlPool final : public QObject {
    Q_OBJECT

public:
    explicit CurlPool(QObject* parent);

    /// Abandons the transfers in flight and closes the connections.
    ~CurlPool() override;

    /// Starts a transfer; it hears of its end through Transfer::finish, never before this returns.
    void add(Transfer& transfer);

    /// Ends a transfer without telling it.
    void remove(Transfer& transfer);

    bool isIdle() const { return m_transfers.empty(); }

Q_SIGNALS:
    void becameIdle();

private:
    struct Watch {
        std::unique_ptr<QSocketNotifier> readable;
        std::unique_ptr<QSocketNotifier> writable;
    };

    static int socketChanged(CURL* easy, curl_socket_t socket, int what, void* pool, void* unused);
    static int timerChanged(CURLM* multi, long milliseconds, void* pool);
    Watch& watch(curl_socket_t socket);
    void act(curl_socket_t socket, int event);
    void deliver();
    void forget(Transfer& transfer);

    CURLM* m_multi;
    QTimer m_timer;
    std::unordered_map<curl_socket_t, Watch> m_watches;
    std::unordered_set<Transfer*> m_transfers;
};

} // namespace torvane
