#include "Platform/ApplicationInstance.h"

#include "Platform/InstanceSocket.h"
#include "Support/Await.h"
#include "Support/FileDescriptor.h"
#include "Support/PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QSignalSpy>
#include <QTest>
#include <QUuid>

#include <cstddef>
#include <cstring>
#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30000;

const QString id = u"org.velisk.Example-App"_s;
const QString path = u"/org/velisk/Example_App"_s;
const QString interface = u"org.freedesktop.Application"_s;

/// An instance and what it has said.
struct Launch {
    explicit Launch(const QDBusConnection& bus, const QString& name = id)
        : instance(bus, name) {
        instance.settle();
    }

    ApplicationInstance instance;
    QSignalSpy first{&instance, &ApplicationInstance::becameFirst};
    QSignalSpy deferred{&instance, &ApplicationInstance::deferred};
    QSignalSpy activated{&instance, &ApplicationInstance::activated};
};

QDBusConnection noBus() {
    return QDBusConnection(u"there is none"_s);
}

/// A name of its own for each test: the kernel's names are the whole machine's.
QString uniqueId() {
    return u"org.velisk."_s + QUuid::createUuid().toString(QUuid::Id128);
}

/// The socket that an instance of this name would bind, held by one that never answers.
FileDescriptor silentSocket(const QString& name) {
    FileDescriptor silent(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray bytes = name.toUtf8() + '/' + QByteArray::number(geteuid()) + "/:test";
    std::memcpy(address.sun_path + 1, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    const auto size =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + static_cast<std::size_t>(bytes.size()));
    const bool bound = bind(silent.get(), reinterpret_cast<const sockaddr*>(&address), size) == 0;
    return bound && listen(silent.get(), 1) == 0 ? std::move(silent) : FileDescriptor(-1);
}

} // namespace

class ApplicationInstanceTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        for (const char* name : {"WAYLAND_DISPLAY", "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
            qunsetenv(name);
        qputenv("DISPLAY", ":test");
    }

    void theFirstLaunchOwnsTheName() {
        PrivateBus bus;
        const QDBusConnection connection = bus.connect();
        const Launch launch(connection);
        QTRY_COMPARE_WITH_TIMEOUT(launch.first.size(), 1, limitMs);
        QVERIFY(connection.interface()->isServiceRegistered(id));
        QCOMPARE(launch.deferred.size(), 0);
    }

    void aSecondLaunchBringsTheFirstForwardAndDefers() {
        PrivateBus bus;
        const Launch first(bus.connect());
        QTRY_COMPARE_WITH_TIMEOUT(first.first.size(), 1, limitMs);
        const Launch second(bus.connect());
        QTRY_COMPARE_WITH_TIMEOUT(second.deferred, QList<QVariantList>{{true}}, limitMs);
        QCOMPARE(first.activated, QList<QVariantList>{{QString()}});
        QCOMPARE(second.first.size(), 0);
        QCOMPARE(second.activated.size(), 0);
    }

    void theFirstHasTheLeaveToComeForwardThatTheSecondWasGiven_data() {
        QTest::addColumn<QByteArray>("variable");
        QTest::newRow("Wayland") << QByteArray("XDG_ACTIVATION_TOKEN");
        QTest::newRow("X11") << QByteArray("DESKTOP_STARTUP_ID");
    }

    void theFirstHasTheLeaveToComeForwardThatTheSecondWasGiven() {
        QFETCH(const QByteArray, variable);
        PrivateBus bus;
        const Launch first(bus.connect());
        QTRY_COMPARE_WITH_TIMEOUT(first.first.size(), 1, limitMs);
        qputenv(variable, "kwin-7");
        const Launch second(bus.connect());
        QTRY_COMPARE_WITH_TIMEOUT(first.activated, QList<QVariantList>{{u"kwin-7"_s}}, limitMs);
        qunsetenv(variable);
    }

    void theNameIsFreeAgainOnceTheFirstHasGone() {
        PrivateBus bus;
        {
            const QDBusConnection connection = bus.connect();
            const Launch first(connection);
            QTRY_COMPARE_WITH_TIMEOUT(first.first.size(), 1, limitMs);
            bus.close(connection);
        }
        const Launch next(bus.connect());
        QTRY_COMPARE_WITH_TIMEOUT(next.first.size(), 1, limitMs);
    }

    void theOwnerThatKnowsNoActivationIsReportedAsSilent() {
        PrivateBus bus;
        QDBusConnection stranger = bus.connect();
        QVERIFY(stranger.registerService(id));
        const Launch launch(bus.connect());
        QTRY_COMPARE_WITH_TIMEOUT(launch.deferred, QList<QVariantList>{{false}}, limitMs);
    }

    void aBusThatRefusesTheNameDoesNotKeepItFromRunning() {
        PrivateBus bus(u"org.velisk.SomethingElse"_s);
        const Launch launch(bus.connect());
        QTRY_COMPARE_WITH_TIMEOUT(launch.first.size(), 1, limitMs);
    }

    void everyMethodOfTheInterfaceBringsItForward() {
        PrivateBus bus;
        const Launch launch(bus.connect());
        QTRY_COMPARE_WITH_TIMEOUT(launch.first.size(), 1, limitMs);
        const QDBusConnection caller = bus.connect();
        const auto call = [](const QString& method, const QVariantList& arguments) {
            QDBusMessage message = QDBusMessage::createMethodCall(id, path, interface, method);
            message.setArguments(arguments);
            return message;
        };
        const QVariantMap data{{u"activation-token"_s, u"token"_s}};
        QCOMPARE(answer(caller, call(u"Activate"_s, {data})).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(answer(caller, call(u"Open"_s, {QStringList{u"file:///a"_s}, data})).type(),
                 QDBusMessage::ReplyMessage);
        QCOMPARE(answer(caller, call(u"ActivateAction"_s, {u"show"_s, QVariantList(), data})).type(),
                 QDBusMessage::ReplyMessage);
        QCOMPARE(launch.activated, QList<QVariantList>(3, {u"token"_s}));
        QCOMPARE(answer(caller, call(u"Activate"_s, {7})).type(), QDBusMessage::ErrorMessage);
        QCOMPARE(launch.activated.size(), 3);
    }

    void withoutABusTheFirstLaunchIsCalledByTheSecond() {
        const QString name = uniqueId();
        const Launch first(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(first.first.size(), 1, limitMs);
        const Launch second(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(second.deferred, QList<QVariantList>{{true}}, limitMs);
        QCOMPARE(first.activated.size(), 1);
        const Launch third(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(third.deferred, QList<QVariantList>{{true}}, limitMs);
        QCOMPARE(first.activated.size(), 2);
    }

    void withoutABusAnotherDisplayHasItsOwnInstance() {
        const QString name = uniqueId();
        const Launch here(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(here.first.size(), 1, limitMs);
        qputenv("WAYLAND_DISPLAY", "wayland-test");
        const Launch there(noBus(), name);
        qunsetenv("WAYLAND_DISPLAY");
        QTRY_COMPARE_WITH_TIMEOUT(there.first.size(), 1, limitMs);
    }

    void withoutABusThePlaceIsTakenAgainOnceItIsFree() {
        const QString name = uniqueId();
        Launch launch(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(launch.first.size(), 1, limitMs);
        await(launch.instance.release());
        auto other = std::make_unique<Launch>(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(other->first.size(), 1, limitMs);
        await(launch.instance.takeAgain());
        const Launch caller(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(caller.deferred, QList<QVariantList>{{true}}, limitMs);
        QCOMPARE(other->activated.size(), 1); // By the caller alone.
        QCOMPARE(launch.activated.size(), 0);
        other.reset();
        QTRY_VERIFY_WITH_TIMEOUT(InstanceSocket::isHeldBy(::getpid(), name), limitMs);
        const Launch next(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(next.deferred, QList<QVariantList>{{true}}, limitMs);
        QCOMPARE(launch.activated.size(), 1);
    }

    void withoutABusAFirstInstanceThatHangsIsGivenUp() {
        const QString name = uniqueId();
        const FileDescriptor silent = silentSocket(name);
        QVERIFY(silent.isOpen());
        const Launch launch(noBus(), name);
        QTRY_COMPARE_WITH_TIMEOUT(launch.deferred, QList<QVariantList>{{false}}, limitMs);
    }
};

QTEST_GUILESS_MAIN(ApplicationInstanceTest)
#include "ApplicationInstanceTest.moc"
