// Writes the usual document to standard output, for programs that are measured with one.
#include "SnapshotDocuments.h"

#include <cstdio>

int main() {
    const QByteArray document = torvane::snapshotDocument(torvane::DocumentShape());
    return std::fwrite(document.constData(), 1, static_cast<size_t>(document.size()), stdout) ==
                   static_cast<size_t>(document.size())
               ? 0
               : 1;
}
