#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace torvane::Updates {

/// Who defines the note, and its type among the owner's: what tells it from the notes of others.
inline constexpr char noteOwner[] = "org.velisk.Torvane";
inline constexpr std::uint32_t noteType = 1;

/// The note as it stands in the file (the generic ABI's "Note Section"): the texts each end in a zero byte.
template <std::size_t Size>
struct ProgramNote final {
    std::uint32_t ownerSize = sizeof noteOwner;
    std::uint32_t contentSize = Size;
    std::uint32_t type = noteType;
    alignas(4) char owner[sizeof noteOwner]{};
    alignas(4) char content[Size]{};
};

template <std::size_t Product, std::size_t Version, std::size_t Architecture>
consteval auto programNote(const char (&product)[Product], const char (&version)[Version],
                           const char (&architecture)[Architecture]) {
    ProgramNote<Product + Version + Architecture> note;
    std::copy_n(noteOwner, sizeof noteOwner, note.owner);
    char* end = std::copy_n(product, Product, note.content);
    end = std::copy_n(version, Version, end);
    std::copy_n(architecture, Architecture, end);
    return note;
}

} // namespace torvane::Updates

/// Puts a note into the program that this stands in. Nothing refers to it, so it is kept from the compiler and, being a
/// note, from the linker's collection of what is not used and from `strip`. Without a word on its alignment the
/// compiler would choose a larger one, which no reader of notes expects.
#define TORVANE_PROGRAM_NOTE(product, version, architecture)                                                           \
    [[gnu::used, gnu::aligned(4),                                                                                      \
      gnu::section(".note.org.velisk.Torvane")]] extern constexpr auto torvaneProgramNote =                            \
        ::torvane::Updates::programNote(product, version, architecture)
