#include "TorvaneUpdates/PayloadCheck.h"

#include "TorvaneUpdates/PayloadNote.h"
#include "TorvaneUpdates/TrialRun.h"
#include "TorvaneUpdates/UpdateFailure.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace torvane::Updates {

namespace {

using namespace std::chrono_literals;

/// It takes a fraction of a second, on machines that are busy or slow some.
constexpr std::chrono::milliseconds trialLimit = 60s;

void requireEqual(const QString& found, const QString& wanted, const QString& what) {
    if (found != wanted)
        throw UpdateFailure(UpdateFault::contents, u"The update is signed, but its "_s + what + u" is "_s + found +
                                                       u" instead of "_s + wanted + u'.');
}

void checkNote(int descriptor, const Expectation& expected) {
    const std::optional<PayloadNote> note = readPayloadNote(descriptor);
    if (!note)
        throw UpdateFailure(UpdateFault::contents, u"The update is signed, but is not a version of this program."_s);
    requireEqual(note->product, expected.product, u"product"_s);
    requireEqual(note->version, expected.item.version, u"version"_s);
    requireEqual(note->architecture, expected.architecture, u"kind of machine"_s);
}

/// Until here it was a file that nobody could start.
void makeRunnable(int descriptor) {
    if (::fchmod(descriptor, S_IRUSR | S_IWUSR | S_IXUSR) != 0)
        throw UpdateFailure(UpdateFault::disk, u"The update cannot be made a program."_s);
}

} // namespace

void checkPayload(int descriptor, const Expectation& expected, const std::stop_token& stop) {
    verifySignature(descriptor, expected.key, expected.item.signature);
    checkNote(descriptor, expected);
    makeRunnable(descriptor);
    tryOut(descriptor, expected.item.version, trialLimit, stop);
}

} // namespace torvane::Updates
