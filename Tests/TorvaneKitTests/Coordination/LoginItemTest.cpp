#include "Coordination/LoginItem.h"

#include "Platform/BackgroundPortal.h"
#include "Support/PrivateBus.h"
#include "Support/TestFiles.h"
#include "Support/Worker.h"

#include <QDBusArgument>
#include <QDBusVirtualObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 60'000;

/// Takes down what it is asked, and answers nothing.
class StandInPortal final : public QDBusVirtualObject {
public:
    QList<QDBusMessage> calls;

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        calls.append(message);
        return true;
    }
};

} // namespace

class LoginItemTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_home;

    QStringList entries() const {
        worker().waitForDone();
        return TestFiles::entriesOf(m_home->filePath(u"autostart"_s));
    }

    QByteArray entry() const {
        return TestFiles::contentOf(m_home->filePath(u"autostart/org.velisk.Torvane.desktop"_s));
    }

private Q_SLOTS:
    void init() {
        m_home = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home->path()));
        qunsetenv("SNAP");
    }

    void onIsAnEntryThatStartsThisProgram() {
        LoginItem::apply(true);
        QCOMPARE(entries(), QStringList{u"org.velisk.Torvane.desktop"_s});
        const QByteArray exec = "\nExec=\"" + QFile::encodeName(QCoreApplication::applicationFilePath()) + "\"\n";
        QVERIFY2(entry().contains(exec), entry());
        QVERIFY2(entry().contains("\nName=velisk\nIcon=org.velisk.Torvane\n"), entry());
    }

    void onTwiceIsOn() {
        LoginItem::apply(true);
        LoginItem::apply(true);
        QCOMPARE(entries(), QStringList{u"org.velisk.Torvane.desktop"_s});
    }

    void offIsNoEntry() {
        LoginItem::apply(true);
        LoginItem::apply(false);
        QCOMPARE(entries(), QStringList());
    }

    void offWithoutAnEntryDoesNothing() {
        LoginItem::apply(false);
        worker().waitForDone();
        QCOMPARE(TestFiles::entriesOf(m_home->path()), QStringList());
    }

    void inASandboxThereIsNoEntry() {
        qputenv("SNAP", QFile::encodeName(QCoreApplication::applicationDirPath()));
        LoginItem::apply(true);
        worker().waitForDone();
        QCOMPARE(TestFiles::entriesOf(m_home->path()), QStringList());
    }

    void fromASandboxedTerminalThereIsOne() {
        qputenv("SNAP", QFile::encodeName(m_home->path()));
        LoginItem::apply(true);
        QCOMPARE(entries(), QStringList{u"org.velisk.Torvane.desktop"_s});
    }

    void theBackgroundPortalIsAsked() {
        PrivateBus bus;
        QDBusConnection service = bus.connect();
        StandInPortal portal;
        QVERIFY(service.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, &portal));
        QVERIFY(service.registerService(u"org.freedesktop.portal.Desktop"_s));
        const QDBusConnection program = bus.connect();
        requestAutostart(program, true, u"because"_s);
        requestAutostart(program, false, u"because"_s);
        QTRY_COMPARE_WITH_TIMEOUT(portal.calls.size(), 2, limitMs);
        for (const bool autostart : {true, false}) {
            const QDBusMessage call = portal.calls.takeFirst();
            QCOMPARE(call.member(), u"RequestBackground"_s);
            QCOMPARE(call.signature(), u"sa{sv}"_s);
            const auto options = qdbus_cast<QVariantMap>(call.arguments().at(1));
            QCOMPARE(options.value(u"autostart"_s), QVariant(autostart));
            QCOMPARE(options.value(u"commandline"_s).toStringList(), QStringList{u"LoginItemTest"_s});
            QCOMPARE(options.value(u"reason"_s), QVariant(u"because"_s));
        }
    }

    void withoutABusASandboxedProgramGoesOn() {
        requestAutostart(QDBusConnection(u"no such connection"_s), true, u"because"_s);
        QVERIFY(TestFiles::entriesOf(m_home->path()).isEmpty());
    }
};

QTEST_GUILESS_MAIN(LoginItemTest)
#include "LoginItemTest.moc"
