#include "ServerCertificate.h"

#include "Support/SafeFile.h"

#include <QFileInfo>

#include <arpa/inet.h>
#include <array>
#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace torvane {

namespace {

constexpr long day = 24 * 3600;
constexpr long lifetime = 3650 * day;
constexpr qint64 mostBytes = 64 * 1024;

template <auto free>
struct Free {
    template <class T>
    void operator()(T* object) const {
        free(object);
    }
};

using Certificate = std::unique_ptr<X509, Free<&X509_free>>;
using PrivateKey = std::unique_ptr<EVP_PKEY, Free<&EVP_PKEY_free>>;
using Memory = std::unique_ptr<BIO, Free<&BIO_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Free<&X509_EXTENSION_free>>;

/// Reads the bytes where they are.
Memory readerOf(const QByteArray& bytes) {
    return Memory(BIO_new_mem_buf(bytes.constData(), static_cast<int>(bytes.size())));
}

QByteArray contentOf(const Memory& memory) {
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &data);
    return QByteArray(data, size);
}

bool isAddress(const QByteArray& host) {
    std::array<unsigned char, sizeof(in6_addr)> address;
    return inet_pton(AF_INET, host, address.data()) == 1 || inet_pton(AF_INET6, host, address.data()) == 1;
}

/// Whether the certificate is for this host and key, now and for another month.
bool serves(X509* certificate, EVP_PKEY* key, const QByteArray& host) {
    time_t inAMonth = time(nullptr) + 30 * day;
    const bool isForHost = isAddress(host) ? X509_check_ip_asc(certificate, host, 0) == 1
                                           : X509_check_host(certificate, host, 0, 0, nullptr) == 1;
    return isForHost && X509_check_private_key(certificate, key) == 1 &&
           X509_cmp_current_time(X509_get0_notBefore(certificate)) < 0 &&
           X509_cmp_time(X509_get0_notAfter(certificate), &inAMonth) > 0;
}

bool filesServe(const ServerCertificate& files, const QByteArray& host) {
    const QByteArray certificateBytes = SafeFile::read(files.certificate, mostBytes).bytes;
    const QByteArray keyBytes = SafeFile::read(files.key, mostBytes).bytes;
    const Memory certificateText = readerOf(certificateBytes);
    const Memory keyText = readerOf(keyBytes);
    const Certificate certificate(PEM_read_bio_X509(certificateText.get(), nullptr, nullptr, nullptr));
    const PrivateKey key(PEM_read_bio_PrivateKey(keyText.get(), nullptr, nullptr, nullptr));
    return certificate && key && serves(certificate.get(), key.get(), host);
}

void extend(X509* certificate, int what, const QByteArray& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, what, value));
    if (!extension || X509_add_ext(certificate, extension.get(), -1) != 1)
        throw CertificateFailure(QStringLiteral("no certificate can be made for this host"));
}

/// So many random bits that no two certificates share it (RFC 5280, 4.1.2.2).
void setSerial(X509* certificate) {
    std::array<unsigned char, 16> random;
    RAND_bytes(random.data(), static_cast<int>(random.size()));
    random[0] &= 0x7f; // Positive.
    BIGNUM* number = BN_bin2bn(random.data(), static_cast<int>(random.size()), nullptr);
    BN_to_ASN1_INTEGER(number, X509_get_serialNumber(certificate));
    BN_free(number);
}

QByteArray alternativeNames(const QByteArray& host) {
    QByteArray names("DNS:localhost,IP:127.0.0.1,IP:::1");
    if (host != "localhost" && host != "127.0.0.1" && host != "::1")
        names += (isAddress(host) ? ",IP:" : ",DNS:") + host;
    return names;
}

Certificate selfSigned(EVP_PKEY* key, const QByteArray& host) {
    Certificate certificate(X509_new());
    X509_set_version(certificate.get(), X509_VERSION_3);
    setSerial(certificate.get());
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -day); // Clocks are corrected now and then.
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), lifetime);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME* name = X509_get_subject_name(certificate.get());
    const auto* text = reinterpret_cast<const unsigned char*>("velisk relay of this user");
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, text, -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    extend(certificate.get(), NID_basic_constraints, "critical,CA:FALSE");
    extend(certificate.get(), NID_key_usage, "critical,digitalSignature");
    extend(certificate.get(), NID_ext_key_usage, "serverAuth");
    extend(certificate.get(), NID_subject_alt_name, alternativeNames(host));
    if (X509_sign(certificate.get(), key, EVP_sha256()) == 0)
        throw CertificateFailure(QStringLiteral("the certificate cannot be signed"));
    return certificate;
}

void make(const ServerCertificate& files, const QByteArray& host) {
    const PrivateKey key(EVP_EC_gen("P-256"));
    if (!key)
        throw CertificateFailure(QStringLiteral("no key can be made"));
    const Certificate certificate = selfSigned(key.get(), host);
    const Memory keyText(BIO_new(BIO_s_mem()));
    const Memory certificateText(BIO_new(BIO_s_mem()));
    PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    PEM_write_bio_X509(certificateText.get(), certificate.get());
    // The key first: with a certificate alone, the next start would take it for somebody else's.
    if (!SafeFile::replace(files.key, contentOf(keyText)) ||
        !SafeFile::replace(files.certificate, contentOf(certificateText)))
        throw CertificateFailure(files.certificate + QStringLiteral(" cannot be written"));
}

} // namespace

ServerCertificate ServerCertificate::at(const QString& path, const QString& host) {
    const QFileInfo file(path);
    const ServerCertificate files{path,
                                  file.path() + QLatin1Char('/') + file.completeBaseName() + QStringLiteral(".key")};
    const QByteArray name = host.toUtf8();
    const SafeFile::EditLock lock(path); // Key and certificate are two files: one start at a time makes them.
    if (filesServe(files, name))
        return files;
    if (QFileInfo::exists(path) && !QFileInfo::exists(files.key))
        throw CertificateFailure(path + QStringLiteral(" is there, but not its key: it is somebody else's. Move it "
                                                       "away to let this relay make its own"));
    make(files, name);
    return files;
}

} // namespace torvane
