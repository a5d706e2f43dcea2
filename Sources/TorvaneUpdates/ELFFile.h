#pragma once

#include <QByteArray>
#include <QList>

#include <cstdint>
#include <optional>

namespace torvane::Updates {

struct ELFNote final {
    QByteArray owner; // without its zero byte
    std::uint32_t type;
    QByteArray content;
};

/// An executable or library in the Executable and Linkable Format (System V generic ABI), of 32 or 64 bits and either
/// byte order, read through an open descriptor. Every number in the file may be a lie.
class ELFFile final {
public:
    explicit ELFFile(int descriptor)
        : m_descriptor(descriptor) {}

    /// The notes of all its note segments in order; none where the file is damaged or no ELF file.
    std::optional<QList<ELFNote>> notes();

private:
    struct Segment {
        std::uint64_t type;
        std::uint64_t offset;
        std::uint64_t size;
        std::uint64_t alignment;
    };

    bool readIdentification();
    std::optional<QByteArray> read(std::uint64_t offset, std::uint64_t size) const;
    std::optional<QList<Segment>> segments() const;
    Segment segment(const QByteArray& header) const;
    bool appendNotes(const Segment& segment, QList<ELFNote>& notes) const;
    std::uint64_t number(const QByteArray& bytes, qsizetype offset, int size) const;

    int m_descriptor;
    bool m_is64 = false;
    bool m_isBigEndian = false;
};

} // namespace torvane::Updates
