#include <QByteArray>
#include <QDirIterator>
#include <QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Gives every file below the named folders to the fuzz target, once. Fails when there is none.
int main(int count, char** arguments) {
    int replayed = 0;
    for (int i = 1; i < count; ++i) {
        QDirIterator files(QFile::decodeName(arguments[i]), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "%s cannot be read\n", qPrintable(file.fileName()));
                return 1;
            }
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                   static_cast<std::size_t>(bytes.size()));
            ++replayed;
        }
    }
    std::printf("%d files replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
