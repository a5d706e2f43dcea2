#include "Support/FreedMemory.h"

#include <QFile>
#include <QTest>

#include <cstdlib>
#include <cstring>
#include <malloc.h>

using namespace torvane;

namespace {

constexpr std::size_t megabyte = 1024 * 1024;

std::size_t largeBlocks() {
    return mallinfo2().hblkhd;
}

} // namespace

class FreedMemoryTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        // Sanitizers and valgrind bring a malloc of their own, which is asked nothing of all this. The system's takes a
        // first large block from the system by itself.
        const std::size_t before = largeBlocks();
        void* volatile block = std::malloc(megabyte);
        const bool isTheSystems = largeBlocks() > before;
        std::free(block);
        if (!isTheSystems)
            QSKIP("malloc is not the system's");
        shareMemoryAmongThreads();
        keepLargeBlocksApart();
    }

    /// The limit stays where it is after a larger block was freed: by itself malloc would raise it to that.
    void largeBlocksComeOneByOneAlsoAfterALargerOneWasFreed() {
        // Volatile, since a compiler may leave out what is allocated for nothing.
        void* volatile block = std::malloc(8 * megabyte);
        std::free(block);
        const std::size_t before = largeBlocks();
        block = std::malloc(4 * megabyte);
        const std::size_t after = largeBlocks();
        std::free(block);
        QVERIFY(after - before >= 4 * megabyte);
        QCOMPARE(largeBlocks(), before);
    }

    void whatWasFreedBelowSomethingStillUsedIsReturned() {
        constexpr std::size_t size = 16 * 1024;
        QList<void*> blocks;
        for (int i = 0; i < 512; ++i)
            blocks.append(std::memset(std::malloc(size), 1, size));
        void* last = std::malloc(size); // Keeps malloc from returning what lies below.
        for (void* block : blocks)
            std::free(block);
        const qint64 before = residentPages();
        returnFreedMemory();
        const qint64 after = residentPages();
        std::free(last);
        QVERIFY2(before - after > 1024, qPrintable(QStringLiteral("%1 to %2 pages").arg(before).arg(after)));
    }

private:
    static qint64 residentPages() {
        QFile file(QStringLiteral("/proc/self/statm"));
        return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() : 0;
    }
};

QTEST_GUILESS_MAIN(FreedMemoryTest)
#include "FreedMemoryTest.moc"
