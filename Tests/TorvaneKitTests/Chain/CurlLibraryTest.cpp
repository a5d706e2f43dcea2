#include "Chain/CurlLibrary.h"

#include <QTest>

#include <dlfcn.h>

using namespace torvane;

class CurlLibraryTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsLoadedOnce();
    void gnuTLSFindsThatItIsNotToBegin();
};

void CurlLibraryTest::itIsLoadedOnce() {
    QCOMPARE(&curl(), &curl());
    QVERIFY(curl().easy_strerror(CURLE_OK));
}

/// The function that GnuTLS finds is the program's, as long as the linker exports it.
void CurlLibraryTest::gnuTLSFindsThatItIsNotToBegin() {
    curl();
    void* gnuTLS = dlopen("libgnutls.so.30", RTLD_LAZY | RTLD_NOLOAD);
    if (!gnuTLS)
        QSKIP("The libcurl of this machine brings no GnuTLS");
    const auto skips = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "_gnutls_global_init_skip"));
    const auto ofItsOwn = reinterpret_cast<int (*)()>(dlsym(gnuTLS, "_gnutls_global_init_skip"));
    dlclose(gnuTLS);
    QVERIFY(skips);
    QVERIFY(ofItsOwn); // What it would ask otherwise: the name is still the one that it knows.
    QCOMPARE(skips(), 1);
}

QTEST_GUILESS_MAIN(CurlLibraryTest)
#include "CurlLibraryTest.moc"
