#include "Model/Config.h"

/// Linked with an address that is none, it must not get past its first read.
int main() {
    return torvane::Config::snapshotURL().isValid() ? 0 : 1;
}
