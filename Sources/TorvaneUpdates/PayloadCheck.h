#pragma once

#include "TorvaneUpdates/Appcast.h"
#include "TorvaneUpdates/Signature.h"

#include <stop_token>

namespace torvane::Updates {

/// What a downloaded program must be.
struct Expectation final {
    AppcastItem item;
    PublicKey key;
    QString product;
    QString architecture; // of this machine
};

/// Whether the file that is open here is what was expected: signed by the holder of the key, which is asked before
/// anything else is read of it; of the expected product, version and kind of machine, as the signed bytes themselves
/// say; and a program that runs. Throws UpdateFailure. Blocks; a stop ends it early, as a failure.
void checkPayload(int descriptor, const Expectation& expected, const std::stop_token& stop);

} // namespace torvane::Updates
