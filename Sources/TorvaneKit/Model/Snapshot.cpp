#include "Model/Snapshot.h"

#include <algorithm>

namespace torvane {

const L2Entry* findL2(const QString& name, const QList<L2Entry>& l2) {
    const auto found =
        std::find_if(l2.cbegin(), l2.cend(), [&name](const L2Entry& entry) { return entry.name == name; });
    return found == l2.cend() ? nullptr : &*found;
}

} // namespace torvane
