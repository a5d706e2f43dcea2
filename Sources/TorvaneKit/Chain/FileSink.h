#pragma once

#include "Chain/NetworkFailure.h"
#include "Support/Async.h"
#include "Support/FileDescriptor.h"

#include <QByteArray>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace torvane {

/// Writes a body that arrives in pieces into a file of a known length, on the worker: the main thread only hands over.
/// What waits to be written is bounded. Awaiting it says that nothing more comes; it yields when all is written and its
/// own descriptor is closed, or throws TransportFailure. Destroying it earlier leaves the rest unwritten.
///     FileSink sink(descriptor, length, progress);
///     ...
///     co_await sink;
class FileSink final : public QObject {
    Q_OBJECT

public:
    enum class Outcome {
        taken,
        full,   // not taken: once more after hasRoom
        failed, // not taken, nor anything further; see failure
    };

    /// The descriptor is duplicated: what is being written when this goes must not meet another file under its number.
    FileSink(int descriptor, qint64 length, std::function<void(qint64)> progress);
    ~FileSink() override;

    Outcome take(QByteArrayView bytes);

    const std::optional<TransportFailure>& failure() const { return m_failure; }

    /// How many bytes have been taken.
    qint64 size() const { return m_taken; }

    auto operator co_await() noexcept {
        struct Awaiter {
            FileSink* sink;

            bool await_ready() const noexcept { return false; }

            void await_suspend(detail::Suspended awaiting) const { sink->end(awaiting); }

            void await_resume() const { sink->requireSuccess(); }
        };
        return Awaiter{this};
    }

Q_SIGNALS:
    void hasRoom();

private:
    void startWriting();
    Task<> write();
    Task<> writeBatch();
    Task<> close();
    void report();
    void end(detail::Suspended awaiting);
    void requireSuccess() const;

    std::shared_ptr<FileDescriptor> m_file;
    qint64 m_length;
    std::function<void(qint64)> m_progress;
    qint64 m_taken = 0;
    qint64 m_written = 0;
    QByteArray m_waiting;
    bool m_isWriting = false;
    std::optional<TransportFailure> m_failure;
    detail::TaskPromiseBase* m_awaiting = nullptr; // Nothing more comes.
    TaskScope m_scope;                             // Last, so that it goes first.
};

} // namespace torvane
