#pragma once

#include "Chain/CurlLibrary.h"
#include "Chain/HTTPMessage.h"
#include "Chain/NetworkFailure.h"
#include "Support/Async.h"

#include <QElapsedTimer>
#include <QTimer>

#include <array>
#include <memory>
#include <optional>

namespace torvane {

class CurlPool;

/// One request to one server through libcurl. Awaiting it starts it and yields the answer, of whatever status, or
/// throws TransportFailure; destroying it cancels it.
///     Transfer transfer(hop);
///     const Answer answer = co_await transfer;
class Transfer final : public QObject {
    Q_OBJECT

public:
    explicit Transfer(const Hop& hop);
    ~Transfer() override;

    auto operator co_await() noexcept {
        struct Awaiter {
            Transfer* transfer;

            bool await_ready() const noexcept { return false; }

            void await_suspend(detail::Suspended awaiting) const { transfer->start(awaiting); }

            Answer await_resume() const { return transfer->outcome(); }
        };
        return Awaiter{this};
    }

    /// For the pool: the handle in flight; the transfer has ended; the pool goes away and nobody will be resumed.
    CURL* easy() const { return m_easy.get(); }

    void finish(CURLcode code);
    void abandon();

private:
    struct Cleanup {
        void operator()(CURL* easy) const { curl().easy_cleanup(easy); }

        void operator()(curl_slist* list) const { curl().slist_free_all(list); }
    };

    static std::size_t received(char* bytes, std::size_t size, std::size_t count, void* transfer);
    std::size_t takeDown(QByteArrayView bytes);
    static std::size_t receivedHead(char* bytes, std::size_t size, std::size_t count, void* transfer);

    template <class Value>
    void set(CURLoption option, Value value);
    void setUp();
    void setUpRequest();
    void setUpTrust();
    void setUpHeaders();
    void start(detail::Suspended awaiting);
    void checkIdleness();
    void goOn();
    bool isSuccess() const;
    void fail(const TransportFailure& failure);
    void end();
    Answer outcome();

    Hop m_hop;
    std::unique_ptr<CURL, Cleanup> m_easy;
    std::unique_ptr<curl_slist, Cleanup> m_headers;
    CURLcode m_setUp = CURLE_OK;
    CurlPool* m_pool = nullptr; // While in flight.
    detail::TaskPromiseBase* m_awaiting = nullptr;
    QTimer m_idleTimer;
    QElapsedTimer m_sinceActivity;
    QByteArray m_head;
    Answer m_answer;
    bool m_isTooLarge = false;
    bool m_isPaused = false;
    std::optional<TransportFailure> m_failure;
    std::array<char, CURL_ERROR_SIZE> m_errorText{};
};

} // namespace torvane
