#include "Support/Worker.h"

#include <QSemaphore>
#include <QTest>

#include <algorithm>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

using namespace torvane;

class WorkerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void jobsRunInTheirOrderOnOneOtherThread() {
        Worker jobs;
        std::vector<int> order;
        std::vector<std::thread::id> threads;
        for (int i = 0; i < 1000; ++i) {
            jobs.start([&, i] {
                order.push_back(i);
                threads.push_back(std::this_thread::get_id());
            });
        }
        jobs.waitForDone();
        std::vector<int> expected(1000);
        std::iota(expected.begin(), expected.end(), 0);
        QCOMPARE(order, expected);
        QVERIFY(std::all_of(threads.cbegin(), threads.cend(), [&](std::thread::id id) { return id == threads[0]; }));
        QVERIFY(threads[0] != std::this_thread::get_id());
    }

    void aJobThatComesWhileTheThreadSleepsIsRun() {
        Worker jobs;
        int done = 0;
        for (int i = 0; i < 100; ++i) {
            jobs.start([&] { ++done; });
            jobs.waitForDone();
            QCOMPARE(done, i + 1);
        }
    }

    void handingOverDoesNotWaitForTheJobUnderWay() {
        Worker jobs;
        QSemaphore gate;
        bool isSecondDone = false;
        jobs.start([&] { gate.acquire(); });
        jobs.start([&] { isSecondDone = true; });
        // Had it waited, this would never be reached.
        gate.release();
        jobs.waitForDone();
        QVERIFY(isSecondDone);
    }

    void waitingForNothingReturns() {
        Worker jobs;
        jobs.waitForDone();
        jobs.start([] {});
        jobs.waitForDone();
        jobs.waitForDone();
    }

    void jobsThatAJobHandsOverAreAwaitedToo() {
        Worker jobs;
        bool isInnerDone = false;
        jobs.start([&] { jobs.start([&] { isInnerDone = true; }); });
        jobs.waitForDone();
        QVERIFY(isInnerDone);
    }

    void whatAJobHoldsIsGoneWhenTheJobCountsAsDone() {
        Worker jobs;
        auto held = std::make_shared<int>(0);
        const std::weak_ptr<int> seen = held;
        jobs.start([held = std::move(held)] { ++*held; });
        jobs.waitForDone();
        QVERIFY(seen.expired());
    }

    void itsEndWaitsForEverythingHandedOver() {
        QSemaphore gate;
        int done = 0;
        {
            Worker jobs;
            jobs.start([&] { gate.acquire(); });
            for (int i = 0; i < 10; ++i)
                jobs.start([&] { ++done; });
            gate.release();
        }
        QCOMPARE(done, 10);
    }

    void severalThreadsMayHandOver() {
        Worker jobs;
        int done = 0; // Only the jobs touch it, one at a time.
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                for (int j = 0; j < 500; ++j)
                    jobs.start([&] { ++done; });
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        jobs.waitForDone();
        QCOMPARE(done, 2000);
    }
};

QTEST_GUILESS_MAIN(WorkerTest)
#include "WorkerTest.moc"
