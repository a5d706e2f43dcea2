#include "Platform/SystemChanges.h"

#include <QSignalSpy>
#include <QTest>

#include <array>
#include <cerrno>
#include <ctime>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

using namespace torvane;

namespace {

constexpr int limitMs = 30000;

/// A clock that has jumped already, as far as its reader can see.
FileDescriptor readableClock() {
    FileDescriptor clock(timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK));
    itimerspec past{};
    past.it_value.tv_nsec = 1;
    timerfd_settime(clock.get(), TFD_TIMER_ABSTIME, &past, nullptr);
    return clock;
}

std::array<FileDescriptor, 2> socketPair() {
    std::array<int, 2> ends{-1, -1};
    socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data());
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

} // namespace

class SystemChangesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theKernelsDescriptorsAreThere() {
        QVERIFY(clockJumpDescriptor().isOpen());
        QVERIFY(networkDescriptor().isOpen());
    }

    void aClockThatStandsStillSaysNothing() {
        const FileDescriptor clock = clockJumpDescriptor();
        quint64 expirations = 0;
        QCOMPARE(read(clock.get(), &expirations, sizeof expirations), ssize_t{-1});
        QCOMPARE(errno, EAGAIN);
    }

    void aJumpOfTheClockIsToldOnce() {
        SystemChanges changes(readableClock(), FileDescriptor(-1), [] { return QByteArray(); });
        QSignalSpy jumps(&changes, &SystemChanges::timeJumped);
        QTRY_COMPARE_WITH_TIMEOUT(jumps.size(), 1, limitMs);
        // Were the timer not armed anew it would stay readable, and the loop would hear of it again and again.
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        QCOMPARE(jumps.size(), 1);
    }

    void aChangedAddressIsToldOnceHoweverMuchTheKernelSays() {
        QByteArray addresses = "eth0 192.0.2.1";
        int reads = 0;
        auto [ours, kernels] = socketPair();
        SystemChanges changes(FileDescriptor(-1), std::move(ours), [&] {
            ++reads;
            return addresses;
        });
        QSignalSpy told(&changes, &SystemChanges::networkChanged);
        addresses = "wlan0 198.51.100.7";
        for (int i = 0; i < 20; ++i)
            QCOMPARE(write(kernels.get(), "news", 4), ssize_t{4});
        QTRY_COMPARE_WITH_TIMEOUT(told.size(), 1, limitMs);
        QCOMPARE(reads, 2);
    }

    void newsThatChangeNoAddressArePassedOver() {
        int reads = 0;
        auto [ours, kernels] = socketPair();
        SystemChanges changes(FileDescriptor(-1), std::move(ours), [&reads] {
            ++reads;
            return QByteArray("eth0 192.0.2.1");
        });
        QSignalSpy told(&changes, &SystemChanges::networkChanged);
        QCOMPARE(write(kernels.get(), "news", 4), ssize_t{4});
        QTRY_COMPARE_WITH_TIMEOUT(reads, 2, limitMs);
        QCOMPARE(told.size(), 0);
    }

    void thisMachinesOwnLoopIsNoAddress() {
        for (const QByteArray& line : outsideAddresses().split('\n')) {
            QVERIFY2(!line.startsWith("lo "), line.constData());
            QVERIFY2(!line.endsWith(" 127.0.0.1") && !line.endsWith(" ::1"), line.constData());
        }
    }
};

QTEST_GUILESS_MAIN(SystemChangesTest)
#include "SystemChangesTest.moc"
