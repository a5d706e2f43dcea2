// A program of its own around UserDefaults, for tests that kill it, starve it of disk or take its rights away:
//     DefaultsScript PREFERENCES DATA-DIRECTORY STEP...
// Each step is NAME[:ARGUMENT...] (see the table at the end). The first expectation that is not met ends it with
// status 1.

#include "SelfCheckingValue.h"
#include "Support/TestFiles.h"
#include "Support/UserDefaults.h"
#include "Support/Worker.h"

#include <QCoreApplication>
#include <QFile>
#include <QMap>
#include <QRandomGenerator>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace torvane;

namespace {

const QString cached = QStringLiteral("cachedSnapshot");
constexpr uid_t nobody = 65534;

void require(bool isMet, const QString& what) {
    if (isMet)
        return;
    std::fprintf(stderr, "not met: %s\n", qUtf8Printable(what));
    std::_Exit(1);
}

void say(const QByteArray& line) {
    std::puts(line);
    std::fflush(stdout);
}

/// Takes all that is left of the disk, to the last byte.
void fillDisk(const QString& path) {
    const int file = ::open(QFile::encodeName(path), O_WRONLY | O_CREAT, 0600);
    for (QByteArray block(65'536, 'f'); !block.isEmpty();) {
        if (::write(file, block.constData(), static_cast<size_t>(block.size())) <= 0)
            block.chop((block.size() + 1) / 2);
    }
    ::close(file);
}

void limitFileSize(qint64 bytes) {
    std::signal(SIGXFSZ, SIG_IGN); // Otherwise a write beyond the limit ends the program.
    rlimit limit{};
    require(::getrlimit(RLIMIT_FSIZE, &limit) == 0, QStringLiteral("a limit to read"));
    limit.rlim_cur = bytes < 0 ? limit.rlim_max : static_cast<rlim_t>(bytes);
    require(::setrlimit(RLIMIT_FSIZE, &limit) == 0, QStringLiteral("a limit to set"));
}

/// The administrator may write everywhere; nobody may not.
void dropRights() {
    if (::geteuid() != 0)
        return;
    require(::setgid(nobody) == 0 && ::setuid(nobody) == 0, QStringLiteral("rights to drop"));
    ::prctl(PR_SET_DUMPABLE, 1); // The leak checker traces its own process.
}

class Script final {
public:
    Script(QString preferences, QString directory)
        : m_preferences(std::move(preferences))
        , m_directory(std::move(directory)) {}

    void run(const QString& step) {
        const QStringList words = step.split(QLatin1Char(':'));
        const auto action = m_actions.constFind(words.first());
        require(action != m_actions.constEnd(), step);
        m_step = step;
        (*action)(words.value(1), words.value(2));
    }

private:
    using Action = std::function<void(const QString& first, const QString& second)>;

    UserDefaults& defaults() {
        if (!m_defaults)
            m_defaults = std::make_unique<UserDefaults>(m_preferences, m_directory);
        return *m_defaults;
    }

    void expect(const UserDefaults& read, const QString& key, const QString& value) const {
        require(read.string(key).value_or(QStringLiteral("none")) == value, m_step);
    }

    void expectData(const UserDefaults& read, const QString& number) const {
        require(read.data(cached) == SelfCheckingValue::make(number.toInt()), m_step);
    }

    void count(const QString& key, int last) {
        for (int i = 1; i <= last; ++i) {
            defaults().set(key, QString::fromStdString(std::to_string(i)));
            worker().waitForDone();
        }
    }

    /// Writes until it is killed. Says "set" before a value is handed over and "durable" once it is on the disk.
    [[noreturn]] void storm(int number) {
        for (;; ++number) {
            const QByteArray value = SelfCheckingValue::make(number);
            say("set " + QByteArray::fromStdString(std::to_string(number)));
            defaults().set(QStringLiteral("storm"), QString::fromLatin1(value));
            defaults().setData(cached, value);
            if (QRandomGenerator::global()->bounded(4) != 0)
                continue;
            worker().waitForDone();
            say("durable " + QByteArray::fromStdString(std::to_string(number)));
        }
    }

    const QString m_preferences;
    const QString m_directory;
    QString m_step;
    std::unique_ptr<UserDefaults> m_defaults;

    const QMap<QString, Action> m_actions{
        {QStringLiteral("set"), [this](auto& key, auto& value) { defaults().set(key, value); }},
        {QStringLiteral("data"),
         [this](auto& number, auto&) { defaults().setData(cached, SelfCheckingValue::make(number.toInt())); }},
        {QStringLiteral("flush"), [](auto&, auto&) { worker().waitForDone(); }},
        {QStringLiteral("expect"), [this](auto& key, auto& value) { expect(defaults(), key, value); }},
        {QStringLiteral("expectData"), [this](auto& number, auto&) { expectData(defaults(), number); }},
        {QStringLiteral("expectOnDisk"),
         [this](auto& key, auto& value) { expect(UserDefaults(m_preferences, m_directory), key, value); }},
        {QStringLiteral("expectDataOnDisk"),
         [this](auto& number, auto&) { expectData(UserDefaults(m_preferences, m_directory), number); }},
        {QStringLiteral("expectEntries"),
         [this](auto& directory, auto& names) {
             require(TestFiles::entriesOf(directory).join(QLatin1Char(' ')) == names, m_step);
         }},
        {QStringLiteral("fillDisk"), [](auto& path, auto&) { fillDisk(path); }},
        {QStringLiteral("remove"), [this](auto& path, auto&) { require(QFile::remove(path), m_step); }},
        {QStringLiteral("limitFileSize"), [](auto& bytes, auto&) { limitFileSize(bytes.toLongLong()); }},
        {QStringLiteral("dropRights"), [](auto&, auto&) { dropRights(); }},
        {QStringLiteral("count"), [this](auto& key, auto& last) { count(key, last.toInt()); }},
        {QStringLiteral("storm"), [this](auto& number, auto&) { storm(number.toInt()); }},
    };
};

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    Script script(arguments.value(1), arguments.value(2));
    for (const QString& step : arguments.sliced(3))
        script.run(step);
    return 0;
}
