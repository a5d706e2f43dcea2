#include "Support/Worker.h"

#include <QCoreApplication>

namespace torvane {

namespace {

class Worker final : public QThreadPool {
public:
    Worker() {
        setMaxThreadCount(1);
        setExpiryTimeout(-1); // An expiring thread wakes up once only to end itself.
        // Before the application object goes: results are delivered through it, and no write may be lost.
        qAddPostRoutine([] { worker().waitForDone(); });
    }
};

} // namespace

QThreadPool& worker() {
    static Worker pool;
    return pool;
}

} // namespace torvane
