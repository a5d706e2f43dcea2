#pragma once

#include <QByteArray>
#include <QList>

#include <cstdint>

namespace torvane {

/// Makes small ELF files of note segments alone, number by number, right or wrong.
struct SampleELF final {
    bool is64 = true;
    bool isBigEndian = false;
    std::uint64_t alignment = 4;
    QList<QByteArray> segments{}; // the bytes of each, as `note` makes them

    /// One note, padded as the alignment asks.
    QByteArray note(QByteArray owner, const QByteArray& content, std::uint32_t type = 1) const {
        owner.append('\0');
        QByteArray bytes =
            number(std::uint64_t(owner.size()), 4) + number(std::uint64_t(content.size()), 4) + number(type, 4) + owner;
        bytes = padded(bytes) + content;
        return padded(bytes);
    }

    QByteArray number(std::uint64_t value, int size) const {
        QByteArray bytes;
        for (int i = 0; i < size; ++i) {
            const int shift = 8 * (isBigEndian ? size - 1 - i : i);
            bytes.append(static_cast<char>(shift < 64 ? value >> shift : 0));
        }
        return bytes;
    }

    QByteArray address(std::uint64_t value) const { return number(value, is64 ? 8 : 4); }

    /// Where the header of a segment stands in the file.
    qsizetype segmentHeader(qsizetype index) const { return (is64 ? 64 : 52) + index * (is64 ? 56 : 32); }

    QByteArray file() const {
        QByteArray headers;
        QByteArray content;
        for (const QByteArray& segment : segments) {
            const auto offset = std::uint64_t(segmentHeader(segments.size()) + content.size());
            headers += header(offset, std::uint64_t(segment.size()));
            content += segment;
        }
        return fileHeader() + headers + content;
    }

private:
    QByteArray padded(QByteArray bytes) const {
        while (std::uint64_t(bytes.size()) % alignment != 0)
            bytes.append('\0');
        return bytes;
    }

    QByteArray fileHeader() const {
        const QByteArray identification = QByteArray("\x7f"
                                                     "ELF") +
                                          char(is64 ? 2 : 1) + char(isBigEndian ? 2 : 1) + '\1' + QByteArray(9, '\0');
        return identification + number(3, 2) + number(62, 2) + number(1, 4) + address(0) +
               address(std::uint64_t(segmentHeader(0))) + address(0) + number(0, 4) +
               number(std::uint64_t(segmentHeader(0)), 2) + number(is64 ? 56 : 32, 2) +
               number(std::uint64_t(segments.size()), 2) + number(0, 2) + number(0, 2) + number(0, 2);
    }

    QByteArray header(std::uint64_t offset, std::uint64_t size) const {
        constexpr int note = 4;
        const QByteArray flags = number(4, 4);
        const QByteArray places = address(offset) + address(offset) + address(offset) + address(size) + address(size);
        return number(note, 4) + (is64 ? flags + places : places + flags) + address(alignment);
    }
};

} // namespace torvane
