#include "Support/Async.h"

#include <QSemaphore>
#include <QSet>
#include <QTest>
#include <QThread>

#include <stdexcept>

using namespace torvane;

namespace {

struct Bad : std::runtime_error {
    using std::runtime_error::runtime_error;
    int code = 7;
};

struct Alive {
    explicit Alive(int& count)
        : m_count(count) {
        ++m_count;
    }

    Alive(const Alive&) = delete;

    ~Alive() { --m_count; }

    int& m_count;
};

Task<QString> text(const QString& value) {
    const auto work = [value] { return value + QLatin1String("!"); };
    const QString result = co_await detached(work);
    co_return result;
}

Task<QString> twice(const QString& value) {
    Task<QString> inner = text(value);
    const QString first = co_await inner;
    const auto work = [first] { return first + first; };
    const QString second = co_await detached(work);
    co_return second;
}

Task<> store(QString value, QString& into) {
    Task<QString> inner = twice(value);
    into = co_await inner;
}

Task<int> failing() {
    const auto work = []() -> int { throw Bad("no"); };
    const int never = co_await detached(work);
    co_return never;
}

Task<> noteFailure(int& code, QThread*& thread) {
    Task<int> inner = failing();
    try {
        co_await inner;
    } catch (const Bad& bad) {
        code = bad.code;
        thread = QThread::currentThread();
    }
}

Task<> waitFor(QSemaphore& gate, int& alive, bool& resumed) {
    const Alive guard(alive);
    const auto work = [&gate] {
        gate.acquire();
        return 1;
    };
    co_await detached(work);
    resumed = true;
}

struct Owner {
    TaskScope scope;
};

Task<> endOwner(std::unique_ptr<Owner>& owner, int& alive, bool& resumed) {
    const Alive guard(alive);
    const auto work = [] { return 1; };
    co_await detached(work);
    owner.reset();
    co_await detached(work);
    resumed = true;
}

Task<> awaitEndingOwner(std::unique_ptr<Owner>& owner, int& alive, bool& resumed) {
    const Alive guard(alive);
    Task<> inner = endOwner(owner, alive, resumed);
    co_await inner;
}

Task<> endOwnerAtOnce(std::unique_ptr<Owner>& owner, int& alive) {
    const Alive guard(alive);
    owner.reset();
    co_return;
}

Task<> keep(std::shared_ptr<int> token) {
    Q_UNUSED(token)
    co_return;
}

} // namespace

class AsyncTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void resultsOfDetachedWorkArriveThroughNestedTasks() {
        TaskScope scope;
        QString result;
        scope.run(store(QStringLiteral("a"), result));
        QVERIFY(result.isEmpty()); // Starting does not block.
        QTRY_COMPARE(result, QStringLiteral("a!a!"));
    }

    void anErrorArrivesAsItWasThrownAndOnTheMainThread() {
        TaskScope scope;
        int code = 0;
        QThread* thread = nullptr;
        scope.run(noteFailure(code, thread));
        QTRY_COMPARE(code, 7);
        QCOMPARE(thread, QThread::currentThread());
    }

    void destroyingTheScopeDestroysTheFramesThatWait() {
        QSemaphore gate;
        int alive = 0;
        bool resumed = false;
        {
            TaskScope scope;
            for (int i = 0; i < 60; ++i)
                scope.run(waitFor(gate, alive, resumed));
            QCOMPARE(alive, 60);
        }
        QCOMPARE(alive, 0);
        gate.release(60);
        worker().waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(!resumed);
    }

    void aTaskMayEndItsOwnOwner() {
        auto owner = std::make_unique<Owner>();
        int alive = 0;
        bool resumed = false;
        owner->scope.run(awaitEndingOwner(owner, alive, resumed));
        QCOMPARE(alive, 2);
        QTRY_VERIFY(!owner);
        QCOMPARE(alive, 0);
        worker().waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(!resumed); // It ran on to its next suspension, and no further.
    }

    void aTaskMayEndItsOwnOwnerBeforeItFirstSuspends() {
        auto owner = std::make_unique<Owner>();
        int alive = 0;
        TaskScope& scope = owner->scope;
        scope.run(endOwnerAtOnce(owner, alive));
        QVERIFY(!owner);
        QCOMPARE(alive, 0);
    }

    void aTaskThatNobodyStartsDoesNothing() {
        QString result;
        { const Task<> unstarted = store(QStringLiteral("a"), result); }
        worker().waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(result.isEmpty());
    }

    void detachedWorkRunsInOrderOnOneThread() {
        QList<int> order;
        QSet<QThread*> threads;
        for (int i = 0; i < 100; ++i) {
            worker().start([&, i] {
                order.append(i);
                threads.insert(QThread::currentThread());
            });
        }
        worker().waitForDone();
        QCOMPARE(order.size(), 100);
        QVERIFY(std::is_sorted(order.cbegin(), order.cend()));
        QCOMPARE(threads.size(), 1);
        QVERIFY(!threads.contains(QThread::currentThread()));
    }

    void theScopeForgetsTasksThatHaveEndedWhenItRunsTheNext() {
        TaskScope scope;
        auto token = std::make_shared<int>(0);
        const std::weak_ptr<int> seen = token;
        scope.run(keep(std::move(token)));
        QVERIFY(!seen.expired()); // A frame lives until the scope next looks.
        scope.run(keep(nullptr));
        QVERIFY(seen.expired());
    }
};

QTEST_GUILESS_MAIN(AsyncTest)
#include "AsyncTest.moc"
