#include <QCoreApplication>

#include <cstdlib>

// Linked into a program, this ends it as soon as it makes its QCoreApplication: what it says to --version is said
// before.
namespace {

void crash() {
    std::abort();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(crash)
