#include "LaunchEnvironment.h"

#include <QProcess>
#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

/// What the program says to Qt through the environment, and what the programs that it starts see of that.
class LaunchEnvironmentTest final : public QObject {
    Q_OBJECT

    /// The value that a program sees that is started now; empty without one.
    static QByteArray seenByChild(const QByteArray& name) {
        QProcess child;
        child.start(u"printenv"_s, {QString::fromLatin1(name)});
        return child.waitForFinished(-1) ? child.readAllStandardOutput().trimmed() : "no child";
    }

private Q_SLOTS:
    void init() {
        qputenv("DISPLAY", ":7");
        qputenv("WAYLAND_DISPLAY", "wayland-7");
        qunsetenv("QT_QPA_PLATFORM");
        qunsetenv("XDG_ACTIVATION_TOKEN");
    }

    void whereBothAreOfferedXIsChosenForThisProgramAlone() {
        {
            const X11Preference preference;
            QCOMPARE(qgetenv("QT_QPA_PLATFORM"), "xcb;wayland");
        }
        QVERIFY(!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"));
        QCOMPARE(seenByChild("QT_QPA_PLATFORM"), QByteArray());
        QCOMPARE(seenByChild("DISPLAY"), ":7");
    }

    void whereOneIsOfferedNothingIsChosen() {
        for (const char* missing : {"DISPLAY", "WAYLAND_DISPLAY"}) {
            init();
            qunsetenv(missing);
            const X11Preference preference;
            QVERIFY(!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"));
        }
    }

    void theUsersOwnChoiceStays() {
        qputenv("QT_QPA_PLATFORM", "wayland");
        {
            const X11Preference preference;
            QCOMPARE(qgetenv("QT_QPA_PLATFORM"), "wayland");
        }
        QCOMPARE(seenByChild("QT_QPA_PLATFORM"), "wayland");
    }

    void onWaylandALaunchersTokenIsThereWhileItIsUsed() {
        for (const QString& platform : {u"wayland"_s, u"wayland-egl"_s}) {
            {
                const ActivationToken token(u"kwin-7"_s, platform);
                QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), "kwin-7");
            }
            QCOMPARE(seenByChild("XDG_ACTIVATION_TOKEN"), QByteArray());
        }
    }

    void elsewhereAndWithoutATokenThereIsNone() {
        const ActivationToken elsewhere(u"kwin-7"_s, u"xcb"_s);
        const ActivationToken none({}, u"wayland"_s);
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    }
};

QTEST_GUILESS_MAIN(LaunchEnvironmentTest)
#include "LaunchEnvironmentTest.moc"
