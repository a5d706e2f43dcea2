#include "LocalService.h"
#include "Model/Config.h"
#include "Options.h"
#include "Publication.h"
#include "Relay.h"
#include "Support/SafeFile.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <csignal>
#include <cstdio>

namespace {

using namespace torvane;

constexpr qint64 mostBytes = 16 * 1024 * 1024;
constexpr int failed = 1;
constexpr int misused = 2;

void say(const QString& line) {
    std::puts(line.toUtf8().constData());
    std::fflush(stdout); // Whoever reads along, a journal or a script, reads at once.
}

int complain(const QString& line, int status) {
    std::fputs((QStringLiteral("velisk-relay: ") + line + QLatin1Char('\n')).toUtf8().constData(), stderr);
    return status;
}

RelayTable tableOf(const Options& options) {
    if (options.table.isEmpty())
        return RelayTable::read(RelayTable::builtIn());
    const SafeFile::Contents contents = SafeFile::read(options.table, mostBytes);
    if (contents.state != SafeFile::State::read)
        throw TableError("it cannot be read");
    return RelayTable::read(contents.bytes);
}

int check(const QString& path) {
    const SafeFile::Contents contents = SafeFile::read(path, mostBytes);
    if (contents.state != SafeFile::State::read)
        return complain(path + QStringLiteral(" cannot be read"), failed);
    try {
        const Snapshot snapshot = decodedDocument(contents.bytes);
        say(QStringLiteral("%1: a snapshot of %2 with %3 networks")
                .arg(path, snapshot.generatedAt, QString::number(snapshot.l2.size())));
        return 0;
    } catch (const DecodingError& error) {
        return complain(path + QStringLiteral(": ") + QString::fromUtf8(error.what()), failed);
    }
}

Task<> publish(Relay& relay) {
    Task<std::optional<QByteArray>> run = relay.run();
    const std::optional<QByteArray> document = co_await run;
    QCoreApplication::exit(document ? 0 : failed);
}

int publishOnce(const RelayTable& table, const Options& options) {
    Relay relay(table, options.document, &say);
    TaskScope runs;
    QTimer::singleShot(0, QCoreApplication::instance(), [&] { runs.run(publish(relay)); });
    return QCoreApplication::exec();
}

int serve(const RelayTable& table, const Options& options) {
    try {
        const LocalService service(table, options, &say);
        return QCoreApplication::exec();
    } catch (const std::exception& failure) {
        return complain(QStringLiteral("%1:%2: %3")
                            .arg(options.host, QString::number(options.port), QString::fromUtf8(failure.what())),
                        failed);
    }
}

int runWithTable(const Options& options) {
    try {
        const RelayTable table = tableOf(options);
        return options.mode == Options::Mode::serve ? serve(table, options) : publishOnce(table, options);
    } catch (const TableError& error) {
        return complain((options.table.isEmpty() ? QStringLiteral("the built-in table") : options.table) +
                            QStringLiteral(": ") + QString::fromUtf8(error.what()),
                        misused);
    }
}

int run(const Options& options) {
    switch (options.mode) {
    case Options::Mode::help:
        say(Options::help().trimmed());
        return 0;
    case Options::Mode::version:
        say(QStringLiteral("velisk-relay ") + Config::currentVersion());
        return 0;
    case Options::Mode::printTable:
        std::fputs(RelayTable::builtIn().constData(), stdout);
        return 0;
    case Options::Mode::check:
        return check(options.document);
    case Options::Mode::publish:
    case Options::Mode::serve:
        break;
    }
    return runWithTable(options);
}

} // namespace

int main(int argc, char** argv) {
    // A connection that its server has closed is reported where it is written to, not by a signal.
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication::setApplicationName(QStringLiteral("velisk-relay"));
    const QCoreApplication application(argc, argv);
    try {
        const Options options = Options::from(QCoreApplication::arguments());
        if (!options.isVerbose)
            QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false"));
        return run(options);
    } catch (const UsageError& error) {
        return complain(QString::fromUtf8(error.what()) + QStringLiteral("; --help tells more"), misused);
    }
}
