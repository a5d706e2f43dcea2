// How often the whole program wakes up, beside the yardstick: voluntary context switches a minute, both at the same
// time, in an X server and on a bus of their own, before a panel that reads them. The stand-in relay and its nodes
// answer them on this machine. WakeupsBenchmark [MINUTES [SECONDS BEFORE]]
// exits with 1 where the bar is missed, with 2 where nothing could be measured
#include "Comparison.h"
#include "StandInWatcher.h"
#include "Support/PrivateBus.h"
#include "Support/TestFiles.h"
#include "ThreadSwitches.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

[[noreturn]] void giveUp(const char* why) {
    std::fprintf(stderr, "%s\n", why);
    std::exit(2);
}

/// A program that ends with this.
class Program final {
public:
    Program(const QString& path, const QStringList& arguments, const QProcessEnvironment& environment) {
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(path, arguments);
        if (!m_process.waitForStarted(-1))
            giveUp(qPrintable(path + " does not start"_L1));
    }

    ~Program() {
        m_process.kill();
        m_process.waitForFinished(-1);
    }

    QByteArray line() {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(-1)) {
        }
        return m_process.readLine().trimmed();
    }

    qint64 id() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }

private:
    QProcess m_process;
};

void runLoopFor(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

void waitForItems(const StandInWatcher& watcher) {
    for (int tenths = 0; tenths < 600; ++tenths) {
        if (watcher.items().size() >= 2)
            return;
        runLoopFor(100ms);
    }
    giveUp("The two programs do not show their items");
}

struct Counts {
    std::vector<double> all;
    std::vector<double> main;
};

void addMinute(ThreadSwitches& switches, Counts& counts) {
    switches.update();
    counts.all.push_back(switches.ofAllThreads());
    counts.main.push_back(switches.ofMainThread());
}

void measureMinute(const Program& ours, const Program& yardstick, Counts& mine, Counts& theirs) {
    ThreadSwitches oursSwitches(ours.id());
    ThreadSwitches yardstickSwitches(yardstick.id());
    for (int second = 0; second < 59; ++second) {
        runLoopFor(1s);
        oursSwitches.update();
        yardstickSwitches.update();
    }
    runLoopFor(1s);
    addMinute(oursSwitches, mine);
    addMinute(yardstickSwitches, theirs);
}

QProcessEnvironment environmentOf(const QString& home, const QString& bus, const QByteArray& display) {
    torvane::TestFiles::put(home + "/config/velisk/preferences.json"_L1, R"({"liveGasCadence":"Per block"})");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus);
    environment.insert(u"DISPLAY"_s, QString::fromLatin1(':' + display));
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    environment.insert(u"QT_LOGGING_RULES"_s, u"org.velisk.Torvane.net.info=false"_s);
    environment.insert(u"NO_AT_BRIDGE"_s, u"1"_s);
    environment.insert(u"XDG_CONFIG_HOME"_s, home + "/config"_L1);
    environment.insert(u"XDG_CACHE_HOME"_s, home + "/cache"_L1);
    environment.insert(u"XDG_DATA_HOME"_s, home + "/data"_L1);
    environment.insert(u"XDG_RUNTIME_DIR"_s, home);
    return environment;
}

struct Measured {
    Counts mine;
    Counts theirs;
};

Measured measure(const Program& ours, const Program& yardstick, int minutes) {
    Measured measured;
    for (int minute = 0; minute < minutes; ++minute)
        measureMinute(ours, yardstick, measured.mine, measured.theirs);
    return measured;
}

/// The figure stays what it is from the next poll on: below the last digit shown, each block's tips may still differ.
void keepTheFigureStill() {
    const QStringList arguments{u"--silent"_s,
                                u"--fail"_s,
                                u"--cacert"_s,
                                QStringLiteral(TORVANE_TEST_CERTIFICATES "/ca.pem"),
                                u"--data"_s,
                                u"baseFee 8"_s,
                                QStringLiteral(STAND_IN_ORIGIN "/control")};
    if (QProcess::execute(u"curl"_s, arguments) != 0)
        giveUp("The stand-in relay does not take orders");
}

void printMain(const Measured& measured) {
    std::printf("%-44s %9.4g     %8.4g\n", "  of these the main thread", median(measured.mine.main),
                median(measured.theirs.main));
}

/// Each change costs what the panel asks when it hears of it: how many questions, it decides. So there is no bar.
void printMoving(const Measured& moving) {
    std::printf("%-44s %9.4g     %8.4g %8.3f\n", "with another figure at each block", median(moving.mine.all),
                median(moving.theirs.all), median(moving.mine.all) / median(moving.theirs.all));
    printMain(moving);
}

int report(const Measured& still, const Measured& moving) {
    std::printf("Voluntary context switches a minute, medians of %zu minutes, a poll per block\n",
                still.mine.all.size());
    Comparison::printHead();
    const Comparison all{"the whole program, the badge unchanged", "", median(still.mine.all), median(still.theirs.all),
                         0.5};
    all.print();
    printMain(still);
    printMoving(moving);
    return all.isMet() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int minutes = application.arguments().value(1, u"3"_s).toInt();
    const std::chrono::seconds before(application.arguments().value(2, u"20"_s).toInt());
    const QTemporaryDir home;
    PrivateBus bus;
    StandInWatcher watcher(bus.connect());
    if (!watcher.appear())
        giveUp("The bus (package dbus-daemon) does not answer");
    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    Program screen(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-nolisten"_s, u"tcp"_s, u"-noreset"_s}, own);
    const QProcessEnvironment environment = environmentOf(home.path(), bus.address(), screen.line());
    Program servers(QStringLiteral(VELISK_STAND_IN), {}, own);
    if (servers.line() != "ready")
        giveUp("The stand-in relay does not start: does another one run?");
    const Program ours(QStringLiteral(VELISK_DEMO), {}, environment);
    const Program yardstick(QStringLiteral(COMPOSITE_YARDSTICK), {QStringLiteral(STAND_IN_ORIGIN)}, environment);
    waitForItems(watcher);
    runLoopFor(before);
    const Measured moving = measure(ours, yardstick, minutes);
    keepTheFigureStill();
    runLoopFor(before + 1min); // The document that says so has been fetched by then.
    const Measured still = measure(ours, yardstick, minutes);
    if (!ours.isRunning() || !yardstick.isRunning())
        giveUp("One of the programs ended");
    return report(still, moving);
}
