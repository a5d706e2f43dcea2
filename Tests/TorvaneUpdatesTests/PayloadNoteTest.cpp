#include "TorvaneUpdates/PayloadNote.h"

#include "Support/FileDescriptor.h"
#include "TorvaneUpdates/Architecture.h"
#include "TorvaneUpdatesTests/SampleELF.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/mman.h>

using namespace torvane;
using namespace torvane::Updates;

namespace {

const QByteArray content("org.example.Program\0001.2.3\0aarch64\0", 34);

std::optional<PayloadNote> noteOf(const QString& path) {
    const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
    return readPayloadNote(file.get());
}

QString run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return QLatin1String("failed: ") + QString::fromLocal8Bit(process.readAllStandardError());
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

} // namespace

Q_DECLARE_METATYPE(torvane::SampleELF)

class PayloadNoteTest final : public QObject {
    Q_OBJECT

    QTemporaryDir m_directory;
    FileDescriptor m_file{::memfd_create("file", MFD_CLOEXEC)};

    QString path(const char* name) const { return m_directory.filePath(QLatin1String(name)); }

    /// Of a file in memory: there are very many of them.
    std::optional<PayloadNote> noteIn(const QByteArray& bytes) const {
        if (::ftruncate(m_file.get(), 0) != 0 || ::pwrite(m_file.get(), bytes.data(), size_t(bytes.size()), 0) < 0)
            qFatal("The memory file cannot be written");
        return readPayloadNote(m_file.get());
    }

private Q_SLOTS:
    void theProgramCarriesItsIdentity() {
        const std::optional<PayloadNote> note = noteOf(QStringLiteral(PROGRAM));
        QVERIFY(note);
        QCOMPARE(note->product, QStringLiteral("org.velisk.Torvane"));
        QCOMPARE(note->version, QStringLiteral(TORVANE_VERSION));
        QCOMPARE(note->architecture, QString::fromLatin1(targetArchitecture));
    }

    void otherToolsReadTheSameNote() {
        const QString said = run(QStringLiteral("readelf"), {QStringLiteral("-nW"), QStringLiteral(PROGRAM)});
        const QByteArray bytes("org.velisk.Torvane\0" TORVANE_VERSION "\0", 20 + sizeof TORVANE_VERSION - 1);
        const QString hex = QString::fromLatin1((bytes + QByteArray(targetArchitecture) + '\0').toHex(' '));
        QVERIFY2(said.contains(QLatin1String("org.velisk.Torvane")), qPrintable(said));
        QVERIFY2(said.contains(QLatin1String("description data: ") + hex), qPrintable(said));
        QVERIFY(!said.contains(QLatin1String("Corrupt")));
    }

    void aProgramOptimisedAndStrippedKeepsItsNote_data() {
        QTest::addColumn<QString>("program");
        QTest::newRow("the program") << QStringLiteral(PROGRAM);
        QTest::newRow("of all optimisations") << QStringLiteral(NOTE_PROGRAM);
    }

    void aProgramOptimisedAndStrippedKeepsItsNote() {
        QFETCH(QString, program);
        const std::optional<PayloadNote> note = noteOf(program);
        QVERIFY(note);
        const QString stripped = path("stripped");
        QCOMPARE(run(QStringLiteral("strip"), {QStringLiteral("--strip-all"), QStringLiteral("-o"), stripped, program}),
                 QString());
        QVERIFY(noteOf(stripped) == note);
    }

    void aNoteOfAnyLayoutIsRead_data() {
        QTest::addColumn<SampleELF>("sample");
        for (const bool is64 : {false, true}) {
            for (const bool isBig : {false, true}) {
                for (const std::uint64_t alignment : {4U, 8U}) {
                    QTest::addRow("%d bits, %s endian, alignment %d", is64 ? 64 : 32, isBig ? "big" : "little",
                                  int(alignment))
                        << SampleELF{.is64 = is64, .isBigEndian = isBig, .alignment = alignment};
                }
            }
        }
    }

    void aNoteOfAnyLayoutIsRead() {
        QFETCH(SampleELF, sample);
        sample.segments = {sample.note("GNU", "abc", 5), sample.note("GNU", {}) +
                                                             sample.note("org.velisk.Torvane", content) +
                                                             sample.note("org.velisk.Torvane", "of another type", 2)};
        const PayloadNote expected{.product = QStringLiteral("org.example.Program"),
                                   .version = QStringLiteral("1.2.3"),
                                   .architecture = QStringLiteral("aarch64")};
        QVERIFY(noteIn(sample.file()) == expected);
        // Cut off anywhere, or with any byte of it different, it gives a note or none.
        const QByteArray whole = sample.file();
        for (qsizetype length = 0; length < whole.size(); ++length)
            QVERIFY(!noteIn(whole.first(length)));
        for (qsizetype i = 0; i < whole.size(); ++i) {
            for (const char byte : {'\0', '\1', '\x7f', '\x80', '\xff'}) {
                QByteArray other = whole;
                other[i] = byte;
                const std::optional<PayloadNote> note = noteIn(other);
                QVERIFY(!note || !note->product.isEmpty());
            }
        }
    }

    void whatHasNoNoteHasNone_data() {
        QTest::addColumn<QByteArray>("file");
        const SampleELF sample;
        const auto row = [&](const char* name, const QList<QByteArray>& segments) {
            SampleELF made = sample;
            made.segments = segments;
            QTest::newRow(name) << made.file();
        };
        const auto ours = [&](const QByteArray& bytes) { return sample.note("org.velisk.Torvane", bytes); };
        QTest::newRow("an empty file") << QByteArray();
        QTest::newRow("a script") << QByteArray("#!/bin/sh\nexit 0\n");
        row("no segments", {});
        row("no notes", {QByteArray()});
        row("another owner", {sample.note("org.velisk.Torvane2", content)});
        row("another type", {sample.note("org.velisk.Torvane", content, 3)});
        row("two in a segment", {ours(content) + ours(content)});
        row("two in two segments", {ours(content), ours(content)});
        row("no content", {ours({})});
        row("two texts", {ours(QByteArray("a\0b\0", 4))});
        row("four texts", {ours(QByteArray("a\0b\0c\0d\0", 8))});
        row("an empty text", {ours(QByteArray("a\0\0c\0", 5))});
        row("no zero at the end", {ours(QByteArray("a\0b\0c", 5))});
        row("a blank", {ours(QByteArray("a\0b c\0d\0", 8))});
        row("a control character", {ours(QByteArray("a\0b\x1b\0d\0", 7))});
        row("no ASCII", {ours(QByteArray("a\0b\xc3\xa4\0d\0", 8))});
        row("a text without end", {ours(QByteArray(1000, 'a') + QByteArray("\0b\0c\0", 5))});
        row("too many segments", QList<QByteArray>(300, ours(content)));
        row("a segment too large", {ours(content) + QByteArray(70000, '\0')});
    }

    void whatHasNoNoteHasNone() {
        QFETCH(QByteArray, file);
        QVERIFY(!noteIn(file));
    }

    void numbersThatOverflowAreRefused_data() {
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("size");
        const auto header = int(SampleELF().segmentHeader(0));
        const auto note = int(SampleELF().segmentHeader(1));
        QTest::newRow("segment table") << 32 << 8;
        QTest::newRow("size of its entries") << 54 << 2;
        QTest::newRow("their number") << 56 << 2;
        QTest::newRow("a segment's offset") << header + 8 << 8;
        QTest::newRow("a segment's size") << header + 32 << 8;
        QTest::newRow("a note's owner") << note << 4;
        QTest::newRow("a note's content") << note + 4 << 4;
    }

    void numbersThatOverflowAreRefused() {
        QFETCH(int, offset);
        QFETCH(int, size);
        SampleELF sample;
        sample.segments = {sample.note("org.velisk.Torvane", content)};
        const QByteArray whole = sample.file();
        QVERIFY(noteIn(whole));
        const std::uint64_t all = ~std::uint64_t(0);
        for (const std::uint64_t value : {all, all - 1, all - 3, all - 7, all - 64, all >> 1U, (all >> 1U) + 1,
                                          (all >> 1U) - 64, std::uint64_t(0x80000000), std::uint64_t(0x7fffffff)}) {
            QByteArray file = whole;
            file.replace(offset, size, sample.number(value, size));
            QVERIFY(!noteIn(file));
        }
    }

    void aProgramWithoutANoteHasNone() { QVERIFY(!noteOf(QStringLiteral(NOTELESS_PROGRAM))); }

    void whatCannotBeReadHasNoNote() {
        QVERIFY(!readPayloadNote(-1));
        QVERIFY(!noteOf(m_directory.path()));
        int ends[2];
        QCOMPARE(::pipe2(ends, O_CLOEXEC), 0);
        const FileDescriptor one(ends[0]);
        const FileDescriptor other(ends[1]);
        QVERIFY(!readPayloadNote(one.get()));
    }

    void readingLeavesTheFilesPositionAlone() {
        const FileDescriptor file(::open(PROGRAM, O_RDONLY | O_CLOEXEC));
        QCOMPARE(::lseek(file.get(), 7, SEEK_SET), off_t(7));
        QVERIFY(readPayloadNote(file.get()));
        QCOMPARE(::lseek(file.get(), 0, SEEK_CUR), off_t(7));
    }
};

QTEST_GUILESS_MAIN(PayloadNoteTest)
#include "PayloadNoteTest.moc"
