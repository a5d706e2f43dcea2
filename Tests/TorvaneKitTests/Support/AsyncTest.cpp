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

/// Ends when the gate opens, and throws then if it is told to.
Task<> passGate(QSemaphore& gate, QStringList& log, QString name, bool fails) {
    log.append(name + QLatin1String(" begins"));
    const auto work = [&gate] {
        gate.acquire();
        return 1;
    };
    co_await detached(work);
    log.append(name + QLatin1String(" ends"));
    if (fails)
        throw Bad(name.toStdString());
}

Task<> endAtOnce(QStringList& log, QString name) {
    log.append(name + QLatin1String(" begins and ends"));
    co_return;
}

Task<> both(Task<> first, Task<> second, QStringList& log) {
    Task<> pair = whenBoth(std::move(first), std::move(second));
    try {
        co_await pair;
        log.append(QStringLiteral("both ended"));
    } catch (const Bad& bad) {
        log.append(QLatin1String("failed: ") + QLatin1String(bad.what()));
    }
}

Task<> dropOwner(std::unique_ptr<TaskScope>& owner, QSemaphore& gate, int& alive) {
    const Alive guard(alive);
    const auto work = [&gate] {
        gate.acquire();
        return 1;
    };
    co_await detached(work);
    owner.reset();
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
        QTRY_COMPARE_WITH_TIMEOUT(result, QStringLiteral("a!a!"), 30'000);
    }

    void anErrorArrivesAsItWasThrownAndOnTheMainThread() {
        TaskScope scope;
        int code = 0;
        QThread* thread = nullptr;
        scope.run(noteFailure(code, thread));
        QTRY_COMPARE_WITH_TIMEOUT(code, 7, 30'000);
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
        QTRY_VERIFY_WITH_TIMEOUT(!owner, 30'000);
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

    void twoTasksRunSideBySideAndBothAreAwaited() {
        QSemaphore gate;
        QStringList log;
        TaskScope scope;
        scope.run(both(passGate(gate, log, QStringLiteral("a"), false), passGate(gate, log, QStringLiteral("b"), false),
                       log));
        const QStringList begun{QStringLiteral("a begins"), QStringLiteral("b begins")};
        QCOMPARE(log, begun);
        gate.release(1);
        QTRY_COMPARE_WITH_TIMEOUT(log, begun + QStringList{QStringLiteral("a ends")}, 30000);
        gate.release(1);
        QTRY_COMPARE(log, begun + QStringList({QStringLiteral("a ends"), QStringLiteral("b ends"),
                                               QStringLiteral("both ended")}));
    }

    void tasksThatEndAtOnceAreAwaitedToo() {
        QSemaphore gate(1);
        QStringList log;
        TaskScope scope;
        scope.run(both(endAtOnce(log, QStringLiteral("a")), endAtOnce(log, QStringLiteral("b")), log));
        QCOMPARE(log.last(), QStringLiteral("both ended"));
        log.clear();
        scope.run(both(endAtOnce(log, QStringLiteral("a")), passGate(gate, log, QStringLiteral("b"), false), log));
        QTRY_COMPARE_WITH_TIMEOUT(log.last(), QStringLiteral("both ended"), 30000);
        QVERIFY(log.contains(QStringLiteral("b ends")));
    }

    void theFailureOfOneOfTwoWaitsForTheOther_data() {
        QTest::addColumn<bool>("firstFails");
        QTest::addColumn<bool>("secondFails");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("first") << true << false << QStringLiteral("failed: a");
        QTest::newRow("second") << false << true << QStringLiteral("failed: b");
        QTest::newRow("both") << true << true << QStringLiteral("failed: a");
    }

    void theFailureOfOneOfTwoWaitsForTheOther() {
        QFETCH(bool, firstFails);
        QFETCH(bool, secondFails);
        QSemaphore gate(2);
        QStringList log;
        TaskScope scope;
        scope.run(both(passGate(gate, log, QStringLiteral("a"), firstFails),
                       passGate(gate, log, QStringLiteral("b"), secondFails), log));
        QTRY_COMPARE_WITH_TIMEOUT(log.size(), 5, 30000);
        QTEST(log.last(), "outcome");
    }

    void destroyingTheScopeDestroysTwoTasksThatRunSideBySide() {
        QSemaphore gate;
        int alive = 0;
        bool resumed = false;
        QStringList log;
        {
            TaskScope scope;
            scope.run(both(waitFor(gate, alive, resumed), waitFor(gate, alive, resumed), log));
            QCOMPARE(alive, 2);
        }
        QCOMPARE(alive, 0);
        gate.release(2);
        worker().waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(!resumed);
        QVERIFY(log.isEmpty());
    }

    void oneOfTwoTasksMayEndTheOwnerOfBoth() {
        QSemaphore gate;
        int alive = 0;
        bool resumed = false;
        QStringList log;
        auto scope = std::make_unique<TaskScope>();
        TaskScope& running = *scope;
        running.run(both(dropOwner(scope, gate, alive), waitFor(gate, alive, resumed), log));
        QCOMPARE(alive, 2);
        gate.release(1);
        QTRY_COMPARE_WITH_TIMEOUT(alive, 0, 30000);
        gate.release(1);
        worker().waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(!resumed);
        QVERIFY(log.isEmpty());
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
