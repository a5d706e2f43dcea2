#pragma once

#include "TorvaneUpdates/ProgramNote.h"

#include <QString>

#include <optional>

namespace torvane::Updates {

/// What a program says of itself inside its own file, so that a signature covers it.
struct PayloadNote final {
    QString product;
    QString version;
    QString architecture; // that it is built for, as uname names it

    bool operator==(const PayloadNote&) const = default;
};

/// Reads the note of the ELF file behind an open descriptor, without moving its reading position. None where the file
/// is no ELF file, is damaged, or has no such note or several. Reads some pages of it: for a worker.
std::optional<PayloadNote> readPayloadNote(int descriptor);

} // namespace torvane::Updates
