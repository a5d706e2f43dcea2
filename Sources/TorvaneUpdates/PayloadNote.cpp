#include "TorvaneUpdates/PayloadNote.h"

#include "TorvaneUpdates/ELFFile.h"

#include <algorithm>

namespace torvane::Updates {

namespace {

constexpr qsizetype longestText = 128;

bool isText(const QByteArray& text) {
    const auto isVisible = [](char c) { return c > ' ' && c < '\x7f'; };
    return !text.isEmpty() && text.size() <= longestText && std::all_of(text.cbegin(), text.cend(), isVisible);
}

/// Three texts, each with a zero byte at its end.
std::optional<PayloadNote> parse(const QByteArray& content) {
    const QList<QByteArray> texts = content.split('\0');
    const bool isComplete = texts.size() == 4 && texts.last().isEmpty();
    if (!isComplete || !std::all_of(texts.cbegin(), texts.cend() - 1, isText))
        return std::nullopt;
    return PayloadNote{.product = QString::fromLatin1(texts[0]),
                       .version = QString::fromLatin1(texts[1]),
                       .architecture = QString::fromLatin1(texts[2])};
}

} // namespace

std::optional<PayloadNote> readPayloadNote(int descriptor) {
    const auto notes = ELFFile(descriptor).notes();
    if (!notes)
        return std::nullopt;
    QList<QByteArray> ours;
    for (const ELFNote& note : *notes) {
        if (note.owner == noteOwner && note.type == noteType)
            ours.append(note.content);
    }
    return ours.size() == 1 ? parse(ours.first()) : std::nullopt;
}

} // namespace torvane::Updates
