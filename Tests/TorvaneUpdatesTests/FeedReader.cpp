#include "Support/FileDescriptor.h"
#include "TorvaneUpdates/Appcast.h"
#include "TorvaneUpdates/Signature.h"

#include <QFile>

#include <cstdio>
#include <fcntl.h>

using namespace torvane;
using namespace torvane::Updates;

namespace {

/// "verified", or why not.
QByteArray verification(const AppcastItem& item, const char* key, const char* payload) {
    const auto publicKey = PublicKey::fromBase64(QString::fromLatin1(key));
    if (!publicKey)
        return "no key";
    const FileDescriptor file(::open(payload, O_RDONLY | O_CLOEXEC));
    try {
        verifySignature(file.get(), *publicKey, item.signature);
    } catch (const SignatureFailure& failure) {
        return failure.what();
    }
    return "verified";
}

void print(const AppcastItem& item, const QByteArray& verified) {
    const auto line = [](const char* name, const QString& text) {
        std::printf("%s: %s\n", name, qUtf8Printable(text));
    };
    line("version", item.version);
    line("product", item.product);
    line("architecture", item.architecture);
    line("os", item.os);
    line("channel", item.channel);
    line("minimum", item.minimumSystemVersion);
    line("url", item.url.toString(QUrl::FullyEncoded));
    line("link", item.link.toString(QUrl::FullyEncoded));
    line("notes link", item.notesLink.toString(QUrl::FullyEncoded));
    std::printf("length: %lld\ncritical: %d\ninformational: %d\nphased: %lld\ndated: %d\nsignature: %s\n",
                static_cast<long long>(item.length), item.isCritical, item.isInformational,
                static_cast<long long>(item.phasedRolloutInterval.count()), item.pubDate.isValid(),
                verified.constData());
    line("notes", item.notes);
}

} // namespace

/// FeedReader FEED KEY PAYLOAD: prints the items of a feed, and whether their signatures of the payload hold.
int main(int count, char** arguments) {
    QFile feed(count == 4 ? QFile::decodeName(arguments[1]) : QString());
    if (!feed.open(QIODevice::ReadOnly))
        return 2;
    try {
        for (const AppcastItem& item : readAppcast(feed.readAll()))
            print(item, item.isInformational ? "none" : verification(item, arguments[2], arguments[3]));
    } catch (const AppcastFailure& failure) {
        std::printf("%s\n", failure.what());
        return 1;
    }
    return 0;
}
