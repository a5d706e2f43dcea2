#include "Platform/TerminationSignals.h"

#include <QSignalSpy>
#include <QTest>

#include <cerrno>
#include <csignal>

using namespace torvane;

class TerminationSignalsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachSignalArrivesOnTheMainLoop_data() {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }

    void eachSignalArrivesOnTheMainLoop() {
        QFETCH(int, number);
        TerminationSignals signals_;
        QSignalSpy received(&signals_, &TerminationSignals::received);
        std::raise(number);
        QCOMPARE(received.size(), 0); // Never inside the handler.
        QTRY_COMPARE_WITH_TIMEOUT(received.size(), 1, 30000);
    }

    void whatIsInterruptedKeepsItsErrorNumber() {
        TerminationSignals signals_;
        errno = 0;
        constexpr int moreThanAPipeHolds = 1 << 17;
        for (int i = 0; i < moreThanAPipeHolds && errno == 0; ++i)
            std::raise(SIGTERM);
        QCOMPARE(errno, 0);
    }

    void theDefaultActionComesBackWithItsEnd() {
        { TerminationSignals signals_; }
        struct sigaction action {};
        sigaction(SIGTERM, nullptr, &action);
        QVERIFY(action.sa_handler == SIG_DFL);
    }
};

QTEST_GUILESS_MAIN(TerminationSignalsTest)
#include "TerminationSignalsTest.moc"
