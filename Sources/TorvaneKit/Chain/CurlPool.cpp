#include "Chain/CurlPool.h"

#include "Chain/Transfer.h"

#include <chrono>

namespace torvane {

CurlPool::CurlPool(QObject* parent)
    : QObject(parent)
    , m_multi(curl().multi_init())
    , m_timer(this) {
    Q_CHECK_PTR(m_multi);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
    curl().multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, &CurlPool::socketChanged);
    curl().multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
    curl().multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, &CurlPool::timerChanged);
    curl().multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
}

CurlPool::~CurlPool() {
    while (!m_transfers.empty()) {
        Transfer& transfer = **m_transfers.begin();
        remove(transfer);
        transfer.abandon();
    }
    curl().multi_cleanup(m_multi);
}

void CurlPool::add(Transfer& transfer) {
    m_transfers.insert(&transfer);
    curl().multi_add_handle(m_multi, transfer.easy());
}

void CurlPool::remove(Transfer& transfer) {
    // Does not wait for a resolver that is still busy: the handle is set to exit quickly.
    curl().multi_remove_handle(m_multi, transfer.easy());
    forget(transfer);
}

void CurlPool::forget(Transfer& transfer) {
    m_transfers.erase(&transfer);
    if (m_transfers.empty())
        Q_EMIT becameIdle();
}

CurlPool::Watch& CurlPool::watch(curl_socket_t socket) {
    Watch& watch = m_watches[socket];
    if (watch.readable)
        return watch;
    watch.readable = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read, this);
    watch.writable = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write, this);
    connect(watch.readable.get(), &QSocketNotifier::activated, this, [this, socket] { act(socket, CURL_CSELECT_IN); });
    connect(watch.writable.get(), &QSocketNotifier::activated, this, [this, socket] { act(socket, CURL_CSELECT_OUT); });
    return watch;
}

int CurlPool::socketChanged(CURL*, curl_socket_t socket, int what, void* pool, void*) {
    // Notifiers are switched, never deleted: libcurl may call this from inside their signal, and the number comes back
    // with the next connection. There are as many of them as there were sockets open at one time.
    Watch& watch = static_cast<CurlPool*>(pool)->watch(socket);
    watch.readable->setEnabled(what == CURL_POLL_IN || what == CURL_POLL_INOUT);
    watch.writable->setEnabled(what == CURL_POLL_OUT || what == CURL_POLL_INOUT);
    return 0;
}

int CurlPool::timerChanged(CURLM*, long milliseconds, void* pool) {
    // libcurl forbids calling back into it from here, so that even 0 ms is left to the timer.
    QTimer& timer = static_cast<CurlPool*>(pool)->m_timer;
    if (milliseconds < 0)
        timer.stop();
    else
        timer.start(std::chrono::milliseconds(milliseconds));
    return 0;
}

void CurlPool::act(curl_socket_t socket, int event) {
    int running = 0;
    curl().multi_socket_action(m_multi, socket, event, &running);
    deliver();
}

void CurlPool::deliver() {
    int left = 0;
    while (const CURLMsg* message = curl().multi_info_read(m_multi, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        const CURLcode code = message->data.result; // Removing the handle frees the message.
        CURL* easy = message->easy_handle;
        void* transfer = nullptr;
        curl().easy_getinfo(easy, CURLINFO_PRIVATE, &transfer);
        curl().multi_remove_handle(m_multi, easy);
        forget(*static_cast<Transfer*>(transfer));
        static_cast<Transfer*>(transfer)->finish(code);
    }
}

} // namespace torvane
