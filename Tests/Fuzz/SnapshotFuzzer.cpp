#include "Model/Snapshot.h"
#include "Support/JSON.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

/// What decodes can be encoded, and is then decoded to the same.
void checkSnapshot(QByteArrayView bytes) {
    const Snapshot snapshot = JSON::decode<Snapshot>(bytes);
    insist(std::isfinite(snapshot.price.eth));
    for (const double value : snapshot.gas.history)
        insist(std::isfinite(value));
    const QByteArray once = JSON::encode(snapshot);
    insist(JSON::encode(JSON::decode<Snapshot>(once)) == once);
}

/// The members of an object survive being written and read again.
void checkMembers(QByteArrayView bytes) {
    const JSON::Members members = JSON::members(bytes);
    const QByteArray object = JSON::object(members);
    insist(JSON::members(object) == members);
    for (const auto& [name, text] : members)
        const JSON::Document alone(text);
}

/// A refusal is a fine answer if it says something.
template <class Check>
void unlessRefused(Check check, QByteArrayView bytes) {
    try {
        check(bytes);
    } catch (const DecodingError& error) {
        insist(!error.description().isEmpty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    unlessRefused(checkSnapshot, bytes);
    unlessRefused(checkMembers, bytes);
    return 0;
}
