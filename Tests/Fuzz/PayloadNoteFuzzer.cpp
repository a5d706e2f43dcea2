#include "Support/FileDescriptor.h"
#include "TorvaneUpdates/PayloadNote.h"

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

/// Any bytes as a program: it has no note, or one of three texts that can be shown.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FileDescriptor file(::memfd_create("program", MFD_CLOEXEC));
    insist(::ftruncate(file.get(), 0) == 0);
    insist(::pwrite(file.get(), data, size, 0) == static_cast<ssize_t>(size));
    const auto note = Updates::readPayloadNote(file.get());
    insist(!note || (!note->product.isEmpty() && !note->version.isEmpty() && !note->architecture.isEmpty()));
    return 0;
}
