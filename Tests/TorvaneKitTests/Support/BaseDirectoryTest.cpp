#include "Support/BaseDirectory.h"

#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

class BaseDirectoryTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        qputenv("HOME", "/home/someone");
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
            qunsetenv(name);
    }

    void theyLieBelowTheHomeDirectory() {
        QCOMPARE(BaseDirectory::config(), u"/home/someone/.config"_s);
        QCOMPARE(BaseDirectory::cache(), u"/home/someone/.cache"_s);
        QCOMPARE(BaseDirectory::data(), u"/home/someone/.local/share"_s);
    }

    void theEnvironmentGoesFirst() {
        qputenv("XDG_CONFIG_HOME", "/etc/mine");
        qputenv("XDG_CACHE_HOME", "/var/\xc3\xa9 mine");
        qputenv("XDG_DATA_HOME", "/srv/mine");
        qputenv("XDG_RUNTIME_DIR", "/run/user/1");
        QCOMPARE(BaseDirectory::config(), u"/etc/mine"_s);
        QCOMPARE(BaseDirectory::cache(), u"/var/\u00e9 mine"_s);
        QCOMPARE(BaseDirectory::data(), u"/srv/mine"_s);
        QCOMPARE(BaseDirectory::runtime(), u"/run/user/1"_s);
    }

    void whatIsNotAbsoluteCountsAsNotSet() {
        qputenv("XDG_CONFIG_HOME", "mine");
        qputenv("XDG_CACHE_HOME", "");
        qputenv("XDG_RUNTIME_DIR", "./run");
        QCOMPARE(BaseDirectory::config(), u"/home/someone/.config"_s);
        QCOMPARE(BaseDirectory::cache(), u"/home/someone/.cache"_s);
        QCOMPARE(BaseDirectory::runtime(), QString());
    }

    void theRuntimeDirectoryHasNoDefault() { QCOMPARE(BaseDirectory::runtime(), QString()); }
};

QTEST_GUILESS_MAIN(BaseDirectoryTest)
#include "BaseDirectoryTest.moc"
