#include "RequestGate.h"

#include "Support/Await.h"
#include "Together.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>

using namespace torvane;

namespace {

/// Who is inside, and how many have been at one time.
struct Crowd {
    QHash<QString, int> inside{};
    QHash<QString, int> most{};
    int total = 0;
    int mostInAll = 0;
    QStringList order{};

    void enter(const QString& host) {
        most[host] = std::max(most[host], ++inside[host]);
        mostInAll = std::max(mostInAll, ++total);
        order.append(host);
    }

    void leave(const QString& host) {
        --inside[host];
        --total;
    }
};

Task<> visit(RequestGate& gate, Crowd& crowd, QString host) {
    RequestGate::Place place(gate, host);
    co_await place;
    crowd.enter(host);
    RequestGate elsewhere({1, 1, 1e6}); // Stays a few turns of the loop.
    RequestGate::Place pause(elsewhere, host);
    co_await pause;
    crowd.leave(host);
}

/// Leaves as soon as it is inside.
Task<> glance(RequestGate& gate, int& count) {
    RequestGate::Place place(gate, QStringLiteral("a"));
    co_await place;
    ++count;
}

void visitAll(RequestGate& gate, Crowd& crowd, const QStringList& hosts) {
    std::vector<Task<>> tasks;
    for (const QString& host : hosts)
        tasks.push_back(visit(gate, crowd, host));
    await(whenAll(std::move(tasks)));
}

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

} // namespace

class RequestGateTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noHostGetsMoreAtOnceThanItsLimit() {
        RequestGate gate({10, 2, 1e6});
        Crowd crowd;
        visitAll(gate, crowd, QStringList(20, a) + QStringList(20, b));
        QCOMPARE(crowd.most[a], 2);
        QCOMPARE(crowd.most[b], 2);
        QCOMPARE(gate.admitted(), 40);
        QCOMPARE(crowd.total, 0);
    }

    void allTogetherKeepTheLimitToo() {
        RequestGate gate({3, 2, 1e6});
        Crowd crowd;
        visitAll(gate, crowd, QStringList(20, a) + QStringList(20, b));
        QCOMPARE(crowd.mostInAll, 3);
        QCOMPARE(crowd.order.size(), 40);
    }

    void aBusyHostDoesNotHoldUpAnother() {
        RequestGate gate({10, 1, 1e6});
        Crowd crowd;
        visitAll(gate, crowd, {a, a, a, b});
        QCOMPARE(crowd.order, QStringList({a, b, a, a}));
    }

    void aHostHasItsPause() {
        RequestGate gate({10, 10, 50}); // 20 ms apart.
        Crowd crowd;
        QElapsedTimer time;
        time.start();
        visitAll(gate, crowd, QStringList(6, a));
        QVERIFY(time.elapsed() >= 100); // Five pauses: a lower bound, which no load can break.
        QCOMPARE(crowd.order.size(), 6);
    }

    /// Pauses of the length of a turn of the loop: again and again one ends just while the gate looks at it.
    void nobodyIsForgottenWhenAPauseEnds() {
        RequestGate gate({10, 10, 50'000});
        int count = 0;
        for (int round = 0; round < 40; ++round) {
            std::vector<Task<>> tasks;
            for (int i = 0; i < 50; ++i)
                tasks.push_back(glance(gate, count));
            await(whenAll(std::move(tasks)));
        }
        QCOMPARE(count, 2000);
    }

    void whoeverGivesUpLeavesTheQueue() {
        RequestGate gate({1, 1, 1e6});
        Crowd crowd;
        {
            Task<> waiting = visit(gate, crowd, a);
            waiting.start(); // And is destroyed while it waits.
        }
        visitAll(gate, crowd, {b});
        QCOMPARE(crowd.order, QStringList({b}));
    }
};

QTEST_GUILESS_MAIN(RequestGateTest)
#include "RequestGateTest.moc"
