#include "ThreadSwitches.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

qint64 voluntarySwitches(const QString& statusPath) {
    QFile file(statusPath);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray label = "\nvoluntary_ctxt_switches:";
    const QByteArray status = file.readAll();
    const qsizetype at = status.indexOf(label) + label.size();
    return status.mid(at, status.indexOf('\n', at) - at).trimmed().toLongLong();
}

} // namespace

ThreadSwitches::ThreadSwitches(qint64 process)
    : m_process(process) {
    update();
    for (Count& count : m_threads)
        count.first = count.last;
}

void ThreadSwitches::update() {
    const QString folder = "/proc/"_L1 + QLatin1StringView(QByteArray::number(m_process)) + "/task/"_L1;
    for (const QString& thread : QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        Count& count = m_threads[thread.toLongLong()];
        // A thread that has just ended reads as 0.
        count.last = std::max(count.last, voluntarySwitches(folder + thread + "/status"_L1));
    }
}

double ThreadSwitches::ofAllThreads() const {
    qint64 sum = 0;
    for (const Count& count : m_threads)
        sum += count.total();
    return static_cast<double>(sum);
}
