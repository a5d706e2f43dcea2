#include "Chain/FileSink.h"

#include <cstring>
#include <fcntl.h>

namespace torvane {

namespace {

constexpr qsizetype batchSize = qsizetype{64} * 1024;    // bytes; the worker is not woken for less
constexpr qsizetype mostWaiting = qsizetype{256} * 1024; // bytes, while a batch is being written

/// 0, or the number of the error.
int writeAll(int file, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const auto size = static_cast<std::size_t>(bytes.size());
        const ssize_t written = uninterrupted([&] { return ::write(file, bytes.data(), size); });
        if (written <= 0)
            return written < 0 ? errno : EIO;
        bytes = bytes.sliced(written);
    }
    return 0;
}

TransportFailure diskFailure(int error) {
    const bool isFull = error == ENOSPC || error == EDQUOT;
    return {TransportFailure::Cause::disk, isFull ? QByteArray("the disk is full") : QByteArray(std::strerror(error))};
}

} // namespace

FileSink::FileSink(int descriptor, qint64 length, std::function<void(qint64)> progress)
    : m_file(std::make_shared<FileDescriptor>(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0)))
    , m_length(length)
    , m_progress(std::move(progress)) {
    if (!m_file->isOpen())
        m_failure = diskFailure(errno);
}

FileSink::~FileSink() {
    // Closing may mean writing, and so waiting: the last reference goes on the worker, behind what it may be writing.
    worker().start([file = std::move(m_file)] {});
}

FileSink::Outcome FileSink::take(QByteArrayView bytes) {
    if (!m_failure && bytes.size() > m_length - m_taken)
        m_failure.emplace(TransportFailure::Cause::tooLarge, "longer than it should be");
    if (m_failure)
        return Outcome::failed;
    if (m_waiting.size() >= mostWaiting)
        return Outcome::full;
    m_waiting.append(bytes.data(), bytes.size());
    m_taken += bytes.size();
    if (m_waiting.size() >= batchSize)
        startWriting();
    return Outcome::taken;
}

void FileSink::startWriting() {
    if (!m_isWriting)
        m_scope.run(write());
}

Task<> FileSink::write() {
    const InFlight writing(m_isWriting);
    while (!m_failure && (m_waiting.size() >= batchSize || (m_awaiting && !m_waiting.isEmpty()))) {
        Task<> batch = writeBatch();
        co_await batch;
        Q_EMIT hasRoom();
    }
    if (!m_awaiting)
        co_return;
    Task<> closing = close();
    co_await closing;
    QMetaObject::invokeMethod(
        this, [awaiting = m_awaiting] { awaiting->run(); }, Qt::QueuedConnection);
}

Task<> FileSink::writeBatch() {
    const qsizetype size = m_waiting.size();
    const auto job = [file = m_file, bytes = std::exchange(m_waiting, {})] { return writeAll(file->get(), bytes); };
    const int error = co_await detached(job);
    if (error != 0) {
        m_failure = diskFailure(error);
        co_return;
    }
    m_written += size;
    report();
}

/// On the worker too: some file systems write only then. Their complaint counts.
Task<> FileSink::close() {
    const auto job = [file = m_file] {
        const int descriptor = file->release();
        return descriptor >= 0 && ::close(descriptor) != 0 && errno != EINTR ? errno : 0;
    };
    const int error = co_await detached(job);
    if (error != 0 && !m_failure)
        m_failure = diskFailure(error);
}

void FileSink::report() {
    if (!m_progress)
        return;
    // From the loop and from a copy: whoever hears of it may cancel, and this is gone.
    QMetaObject::invokeMethod(
        this, [progress = m_progress, written = m_written] { progress(written); }, Qt::QueuedConnection);
}

void FileSink::end(detail::Suspended awaiting) {
    m_awaiting = awaiting.task;
    startWriting();
}

void FileSink::requireSuccess() const {
    if (m_failure)
        throw *m_failure;
    if (m_taken < m_length)
        throw TransportFailure(TransportFailure::Cause::tooShort, "shorter than it should be");
}

} // namespace torvane
