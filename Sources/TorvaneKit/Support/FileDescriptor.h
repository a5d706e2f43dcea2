#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace torvane {

/// Owns an open file descriptor, or none.
class FileDescriptor final {
public:
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor) {}

    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    ~FileDescriptor() {
        if (isOpen())
            ::close(m_descriptor); // Whoever cares whether the bytes arrived has called fsync before.
    }

    bool isOpen() const { return m_descriptor >= 0; }

    int get() const { return m_descriptor; }

    /// Gives it up to the caller.
    [[nodiscard]] int release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};

/// Repeats a system call for as long as signals interrupt it.
template <class Call>
auto uninterrupted(const Call& call) {
    decltype(call()) result;
    do
        result = call();
    while (result < 0 && errno == EINTR);
    return result;
}

} // namespace torvane
