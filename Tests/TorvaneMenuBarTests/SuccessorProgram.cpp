// What takes another program's place, or fails to: SUCCESSOR_DOES says how, SUCCESSOR_ID for which application, and its
// process number goes into the file SUCCESSOR_NOTE.

#include "Platform/ApplicationInstance.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QFile>

#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <unistd.h>

using namespace torvane;
using namespace Qt::StringLiterals;

int main(int argc, char** argv) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // It outlives no test.
    const QCoreApplication application(argc, argv);
    QFile note(qEnvironmentVariable("SUCCESSOR_NOTE"));
    if (!note.open(QIODevice::WriteOnly))
        return 1;
    note.write(QByteArray::number(QCoreApplication::applicationPid()) + ' ' +
               (qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN") ? "with a token" : "without a token") + ' ' +
               qgetenv("SUCCESSOR_BYTES"));
    note.close();
    const QString does = qEnvironmentVariable("SUCCESSOR_DOES");
    if (does == u"ends"_s)
        return 3;
    if (does == u"crashes"_s)
        std::abort();
    ApplicationInstance instance(QDBusConnection::sessionBus(), qEnvironmentVariable("SUCCESSOR_ID"));
    QObject::connect(&instance, &ApplicationInstance::becameFirst, &application, [&does] {
        if (does == u"crashes when it is there"_s)
            std::abort();
        while (does == u"hangs when it is there"_s)
            ::pause();
    });
    if (does != u"stays away"_s)
        instance.settle();
    return QCoreApplication::exec();
}
