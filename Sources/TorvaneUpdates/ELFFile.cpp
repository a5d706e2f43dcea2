#include "TorvaneUpdates/ELFFile.h"

#include "Support/FileDescriptor.h"

#include <elf.h>
#include <limits>

namespace torvane::Updates {

namespace {

constexpr std::uint64_t mostSegments = 256;
constexpr std::uint64_t largestNotes = 65536; // bytes of one segment
constexpr std::uint64_t noteHeaderSize = 12;

/// Where fields stand in the two classes of files.
struct Layout {
    qsizetype fileHeaderSize;
    qsizetype segmentTable; // in the file's header, as what follows
    qsizetype segmentHeaderSize;
    qsizetype segmentCount;
    qsizetype sizeOfSegmentHeader;
    qsizetype offset; // in a segment's header, as what follows
    qsizetype size;
    qsizetype alignment;
    int addressSize;
};

template <class FileHeader, class SegmentHeader>
constexpr Layout layoutOf{.fileHeaderSize = sizeof(FileHeader),
                          .segmentTable = offsetof(FileHeader, e_phoff),
                          .segmentHeaderSize = offsetof(FileHeader, e_phentsize),
                          .segmentCount = offsetof(FileHeader, e_phnum),
                          .sizeOfSegmentHeader = sizeof(SegmentHeader),
                          .offset = offsetof(SegmentHeader, p_offset),
                          .size = offsetof(SegmentHeader, p_filesz),
                          .alignment = offsetof(SegmentHeader, p_align),
                          .addressSize = sizeof(FileHeader::e_phoff)};

const Layout& layout(bool is64) {
    return is64 ? layoutOf<Elf64_Ehdr, Elf64_Phdr> : layoutOf<Elf32_Ehdr, Elf32_Phdr>;
}

/// Up to the next multiple. Neither is large: both come from within one segment of notes.
std::uint64_t aligned(std::uint64_t offset, std::uint64_t alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

} // namespace

std::optional<QList<ELFNote>> ELFFile::notes() {
    if (!readIdentification())
        return std::nullopt;
    const auto headers = segments();
    if (!headers)
        return std::nullopt;
    QList<ELFNote> found;
    for (const Segment& segment : *headers) {
        if (segment.type == PT_NOTE && !appendNotes(segment, found))
            return std::nullopt;
    }
    return found;
}

bool ELFFile::readIdentification() {
    const auto bytes = read(0, EI_NIDENT);
    if (!bytes || !bytes->startsWith(ELFMAG))
        return false;
    const char fileClass = bytes->at(EI_CLASS);
    const char order = bytes->at(EI_DATA);
    m_is64 = fileClass == ELFCLASS64;
    m_isBigEndian = order == ELFDATA2MSB;
    return (m_is64 || fileClass == ELFCLASS32) && (m_isBigEndian || order == ELFDATA2LSB) &&
           bytes->at(EI_VERSION) == EV_CURRENT;
}

std::optional<QByteArray> ELFFile::read(std::uint64_t offset, std::uint64_t size) const {
    if (offset > std::uint64_t(std::numeric_limits<qint64>::max()) - size)
        return std::nullopt;
    QByteArray bytes(static_cast<qsizetype>(size), Qt::Uninitialized);
    std::uint64_t filled = 0;
    while (filled < size) {
        const auto position = static_cast<off_t>(offset + filled);
        const ssize_t count =
            uninterrupted([&] { return ::pread(m_descriptor, bytes.data() + filled, size - filled, position); });
        if (count <= 0)
            return std::nullopt; // An error, or beyond the end.
        filled += static_cast<std::uint64_t>(count);
    }
    return bytes;
}

std::optional<QList<ELFFile::Segment>> ELFFile::segments() const {
    const Layout& fields = layout(m_is64);
    const auto header = read(0, static_cast<std::uint64_t>(fields.fileHeaderSize));
    if (!header)
        return std::nullopt;
    const std::uint64_t table = number(*header, fields.segmentTable, fields.addressSize);
    const std::uint64_t count = number(*header, fields.segmentCount, 2);
    const auto size = static_cast<std::uint64_t>(fields.sizeOfSegmentHeader);
    if (number(*header, fields.segmentHeaderSize, 2) != size || count > mostSegments)
        return std::nullopt;
    const auto headers = read(table, count * size);
    if (!headers)
        return std::nullopt;
    QList<Segment> found;
    for (qsizetype at = 0; at < headers->size(); at += fields.sizeOfSegmentHeader)
        found.append(segment(headers->mid(at, fields.sizeOfSegmentHeader)));
    return found;
}

ELFFile::Segment ELFFile::segment(const QByteArray& header) const {
    const Layout& fields = layout(m_is64);
    return {.type = number(header, 0, 4),
            .offset = number(header, fields.offset, fields.addressSize),
            .size = number(header, fields.size, fields.addressSize),
            .alignment = number(header, fields.alignment, fields.addressSize)};
}

/// The sizes in a note do not count the padding behind its owner and its content.
bool ELFFile::appendNotes(const Segment& segment, QList<ELFNote>& notes) const {
    const std::uint64_t alignment = segment.alignment == 8 ? 8 : 4;
    if (segment.size > largestNotes)
        return false;
    const auto bytes = read(segment.offset, segment.size);
    if (!bytes)
        return false;
    for (std::uint64_t at = 0; at < segment.size;) {
        if (segment.size - at < noteHeaderSize)
            return false;
        const auto header = static_cast<qsizetype>(at);
        const std::uint64_t ownerSize = number(*bytes, header, 4);
        const std::uint64_t contentSize = number(*bytes, header + 4, 4);
        const std::uint64_t content = at + aligned(noteHeaderSize + ownerSize, alignment);
        if (content > segment.size || contentSize > segment.size - content)
            return false;
        QByteArray owner = bytes->mid(header + qsizetype(noteHeaderSize), static_cast<qsizetype>(ownerSize));
        if (owner.endsWith('\0'))
            owner.chop(1);
        notes.append({.owner = owner,
                      .type = static_cast<std::uint32_t>(number(*bytes, header + 8, 4)),
                      .content = bytes->mid(static_cast<qsizetype>(content), static_cast<qsizetype>(contentSize))});
        at = content + aligned(contentSize, alignment);
    }
    return true;
}

std::uint64_t ELFFile::number(const QByteArray& bytes, qsizetype offset, int size) const {
    std::uint64_t value = 0;
    for (int i = 0; i < size; ++i) {
        const int digit = m_isBigEndian ? i : size - 1 - i;
        value = value << 8U | static_cast<unsigned char>(bytes.at(offset + digit));
    }
    return value;
}

} // namespace torvane::Updates
