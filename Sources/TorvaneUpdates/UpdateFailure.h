#pragma once

#include <QString>

#include <stdexcept>

namespace torvane::Updates {

/// Why an update does not happen.
enum class UpdateFault {
    notOurs,       // The program's file cannot be replaced by us, or no longer.
    busy,          // Another instance is at it.
    disk,          // The file cannot be written, kept or renamed.
    length,        // Not as long as the feed says.
    signature,     // Not signed by the holder of this build's key.
    contents,      // Signed, but another product, version or kind of machine than the feed's.
    doesNotRun,    // It cannot be started, or does not say that it is that version.
    exchanged,     // Somebody put another file in the place of the checked one.
    doesNotComeUp, // The new program did not take the old one's place.
};

/// Thrown with a sentence for people.
class UpdateFailure final : public std::runtime_error {
public:
    UpdateFailure(UpdateFault fault, const QString& sentence)
        : std::runtime_error(sentence.toStdString())
        , m_fault(fault) {}

    UpdateFault fault() const { return m_fault; }

private:
    UpdateFault m_fault;
};

} // namespace torvane::Updates
