#include "TorvaneUpdates/Signature.h"

#include "Support/FileDescriptor.h"
#include "Support/TestFiles.h"
#include "TorvaneUpdates/Appcast.h"

#include <QTemporaryDir>
#include <QTest>
#include <sodium.h>

#include <fcntl.h>
#include <functional>

using namespace torvane;
using namespace torvane::Updates;

namespace {

/// A key pair of which the tests know both halves.
struct Signer final {
    QByteArray publicKey = QByteArray(crypto_sign_PUBLICKEYBYTES, '\0');
    QByteArray secretKey = QByteArray(crypto_sign_SECRETKEYBYTES, '\0');

    Signer() {
        crypto_sign_keypair(reinterpret_cast<unsigned char*>(publicKey.data()),
                            reinterpret_cast<unsigned char*>(secretKey.data()));
    }

    QByteArray sign(const QByteArray& bytes) const {
        QByteArray signature(crypto_sign_BYTES, '\0');
        crypto_sign_detached(reinterpret_cast<unsigned char*>(signature.data()), nullptr,
                             reinterpret_cast<const unsigned char*>(bytes.constData()),
                             static_cast<unsigned long long>(bytes.size()),
                             reinterpret_cast<const unsigned char*>(secretKey.constData()));
        return signature;
    }

    PublicKey key() const { return *PublicKey::fromBase64(QString::fromLatin1(publicKey.toBase64())); }
};

QString outcomeOf(const std::function<void()>& verifying) {
    try {
        verifying();
    } catch (const SignatureFailure& failure) {
        return QString::fromUtf8(failure.what());
    }
    return QStringLiteral("verified");
}

} // namespace

class SignatureTest final : public QObject {
    Q_OBJECT

    QTemporaryDir m_directory;
    Signer m_signer;
    QByteArray m_payload = QByteArray("\x7f"
                                      "ELF and so on")
                               .repeated(30000);

    QString outcomeFor(const QByteArray& file, const PublicKey& key, const QByteArray& signature) const {
        const QString path = m_directory.filePath(QStringLiteral("payload"));
        TestFiles::put(path, file);
        const FileDescriptor open(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
        return outcomeOf([&] { verifySignature(open.get(), key, signature); });
    }

private Q_SLOTS:
    void aSignedFileIsVerified_data() {
        QTest::addColumn<QByteArray>("payload");
        QTest::newRow("a long one") << m_payload;
        QTest::newRow("one byte") << QByteArray("x");
        QTest::newRow("none") << QByteArray();
    }

    void aSignedFileIsVerified() {
        QFETCH(QByteArray, payload);
        QCOMPARE(outcomeFor(payload, m_signer.key(), m_signer.sign(payload)), QStringLiteral("verified"));
    }

    void theFirstExampleOfTheStandardIsVerified() {
        // RFC 8032, section 7.1, tests 1 and 3.
        const auto key = [](const char* hex) {
            return *PublicKey::fromBase64(QString::fromLatin1(QByteArray::fromHex(hex).toBase64()));
        };
        QCOMPARE(outcomeFor({}, key("d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a"),
                            QByteArray::fromHex("e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e06522490155"
                                                "5fb8821590a33bacc61e39701cf9b46bd25bf5f0595bbe24655141438e7a100b")),
                 QStringLiteral("verified"));
        QCOMPARE(outcomeFor(QByteArray::fromHex("af82"),
                            key("fc51cd8e6218a1a38da47ed00230f0580816ed13ba3303ac5deb911548908025"),
                            QByteArray::fromHex("6291d657deec24024827e69c3abe01a30ce548a284743a445e3680d7db5ac3ac"
                                                "18ff9b538d16f290ae67f760984dc6594a7c15e9716ed28dc027beceea1ec40a")),
                 QStringLiteral("verified"));
    }

    void anyOtherFileIsRefused() {
        const QByteArray signature = m_signer.sign(m_payload);
        const QString wrong =
            QStringLiteral("The update's signature is wrong: it does not come from this program's makers.");
        for (const qsizetype at : {qsizetype(0), m_payload.size() / 2, m_payload.size() - 1}) {
            QByteArray altered = m_payload;
            altered[at] = static_cast<char>(altered[at] ^ 1);
            QCOMPARE(outcomeFor(altered, m_signer.key(), signature), wrong);
        }
        QCOMPARE(outcomeFor(m_payload.chopped(1), m_signer.key(), signature), wrong);
        QCOMPARE(outcomeFor(m_payload + '\0', m_signer.key(), signature), wrong);
        QCOMPARE(outcomeFor({}, m_signer.key(), signature), wrong);
        QCOMPARE(outcomeFor(m_payload, Signer().key(), signature), wrong);
    }

    void anyOtherSignatureIsRefused() {
        const QByteArray signature = m_signer.sign(m_payload);
        for (qsizetype at = 0; at < signature.size(); ++at) {
            QByteArray altered = signature;
            altered[at] = static_cast<char>(altered[at] ^ 0x10);
            QVERIFY(outcomeFor(m_payload, m_signer.key(), altered) != QLatin1String("verified"));
        }
        const QString unsigned_ = QStringLiteral("The update is not signed.");
        QCOMPARE(outcomeFor(m_payload, m_signer.key(), {}), unsigned_);
        QCOMPARE(outcomeFor(m_payload, m_signer.key(), signature.chopped(1)), unsigned_);
        QCOMPARE(outcomeFor(m_payload, m_signer.key(), signature + '\0'), unsigned_);
    }

    void whatIsNoKeyIsRefused_data() {
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const QByteArray& text) {
            QTest::newRow(name) << QString::fromUtf8(text);
        };
        const QByteArray key = m_signer.publicKey;
        row("nothing", {});
        row("a word", "public");
        row("31 bytes", key.chopped(1).toBase64());
        row("33 bytes", (key + '\0').toBase64());
        row("hexadecimal", key.toHex());
        row("a blank in it", key.toBase64().insert(7, ' '));
        row("a line break behind it", key.toBase64() + '\n');
        row("other letters", key.toBase64().replace(3, 1, "\xc3\xa4"));
        row("zero", QByteArray(32, '\0').toBase64());
        row("the neutral point", ("\x01" + QByteArray(31, '\0')).toBase64());
        row("the point of order two", QByteArray::fromHex("ecffffffffffffffffffffffffffffff"
                                                          "ffffffffffffffffffffffffffffff7f")
                                          .toBase64());
        row("a point of order eight", QByteArray::fromHex("26e8958fc2b227b045c3f489f2ef98f0"
                                                          "d5dfac05d3c63339b13802886d53fc05")
                                          .toBase64());
        row("not on the curve", ("\x02" + QByteArray(31, '\0')).toBase64());
        row("a number too large", QByteArray(32, '\xff').toBase64());
    }

    void whatIsNoKeyIsRefused() {
        QFETCH(QString, text);
        QVERIFY(!PublicKey::fromBase64(text));
    }

    void whatCannotBeReadIsRefused() {
        const QByteArray signature = m_signer.sign({});
        const QString unreadable = QStringLiteral("The update cannot be read.");
        QCOMPARE(outcomeOf([&] { verifySignature(-1, m_signer.key(), signature); }), unreadable);
        const FileDescriptor directory(::open("/", O_RDONLY | O_CLOEXEC));
        QCOMPARE(outcomeOf([&] { verifySignature(directory.get(), m_signer.key(), signature); }), unreadable);
        const FileDescriptor device(::open("/dev/zero", O_RDONLY | O_CLOEXEC));
        QCOMPARE(outcomeOf([&] { verifySignature(device.get(), m_signer.key(), signature); }), unreadable);
        const QString path = m_directory.filePath(QStringLiteral("write-only"));
        TestFiles::put(path, m_payload);
        const FileDescriptor writeOnly(::open(QFile::encodeName(path).constData(), O_WRONLY | O_CLOEXEC));
        QCOMPARE(outcomeOf([&] { verifySignature(writeOnly.get(), m_signer.key(), signature); }), unreadable);
    }

    void aFileTooLargeIsNotEvenRead() {
        const FileDescriptor file(::open(QFile::encodeName(m_directory.filePath(QStringLiteral("sparse"))).constData(),
                                         O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        QCOMPARE(::ftruncate(file.get(), largestPayload + 1), 0);
        QCOMPARE(outcomeOf([&] { verifySignature(file.get(), m_signer.key(), m_signer.sign({})); }),
                 QStringLiteral("The update is too large."));
    }

    void verifyingLeavesTheFilesPositionAlone() {
        const QString path = m_directory.filePath(QStringLiteral("position"));
        TestFiles::put(path, m_payload);
        const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
        QCOMPARE(::lseek(file.get(), 0, SEEK_END), off_t(m_payload.size()));
        verifySignature(file.get(), m_signer.key(), m_signer.sign(m_payload));
        QCOMPARE(::lseek(file.get(), 0, SEEK_CUR), off_t(m_payload.size()));
    }
};

QTEST_GUILESS_MAIN(SignatureTest)
#include "SignatureTest.moc"
