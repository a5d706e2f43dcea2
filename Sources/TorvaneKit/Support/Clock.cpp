#include "Support/Clock.h"

#include <atomic>

namespace torvane::Clock {

namespace {

std::atomic<Source> g_source = &QDateTime::currentDateTimeUtc;

} // namespace

QDateTime now() {
    return g_source.load()();
}

void setSource(Source source) {
    g_source = source ? source : &QDateTime::currentDateTimeUtc;
}

} // namespace torvane::Clock
