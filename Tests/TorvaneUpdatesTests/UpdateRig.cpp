#include "UpdateRig.h"

#include "Support/Clock.h"
#include "Support/NextTurn.h"
#include "Support/TestFiles.h"
#include "TorvaneUpdates/UpdateWorker.h"

#include <QFile>
#include <QTest>
#include <sodium.h>

using namespace Qt::StringLiterals;

namespace torvane::Updates {

namespace {

constexpr mode_t programMode = 0750;

QDateTime g_now;

QString itemText(const FeedItem& item, const QUrl& payload, const QByteArray& signature) {
    const QString enclosure = u"<enclosure url='%1' length='%2' type='application/octet-stream' "
                              u"sparkle:edSignature='%3'/>"_s.arg(
                                  payload.toString(), QString::number(item.length.value_or(item.payload.size())),
                                  QString::fromLatin1(signature.toBase64()));
    return u"<item><title>%1</title><sparkle:version>%1</sparkle:version>%2%3</item>"_s.arg(
        item.version, item.more, item.payload.isEmpty() ? QString() : enclosure);
}

} // namespace

UpdateRig::UpdateRig()
    : UpdateRig(QString(), QByteArray(crypto_sign_SEEDBYTES, 's')) {}

UpdateRig::UpdateRig(const QString& folder, const QByteArray& seed)
    : m_ownFolder(folder.isEmpty() ? std::make_unique<QTemporaryDir>() : nullptr)
    , m_folder(folder.isEmpty() ? m_ownFolder->path() : folder)
    , m_publicKey(crypto_sign_PUBLICKEYBYTES, Qt::Uninitialized)
    , m_secretKey(crypto_sign_SECRETKEYBYTES, Qt::Uninitialized) {
    const auto bytes = [](QByteArray& from) { return reinterpret_cast<unsigned char*>(from.data()); };
    if (sodium_init() < 0 || crypto_sign_seed_keypair(bytes(m_publicKey), bytes(m_secretKey),
                                                      reinterpret_cast<const unsigned char*>(seed.constData())) != 0)
        qFatal("No key pair can be made");
    setTime(noon());
    if (!QFile::exists(program())) {
        TestFiles::put(program(), sample("old"));
        if (::chmod(QFile::encodeName(program()), programMode) != 0)
            qFatal("The program cannot be made runnable");
    }
}

UpdateRig::~UpdateRig() {
    updater.reset();
    updateWorker().waitForDone();
    worker().waitForDone();
    Clock::setSource(nullptr);
}

QByteArray UpdateRig::sample(const char* name) {
    const QString path = QStringLiteral(SAMPLE_PROGRAMS "/") + QLatin1StringView(name);
    if (!QFile::exists(path))
        qFatal("There is no sample program %s", name);
    return TestFiles::contentOf(path);
}

QUrl UpdateRig::feed() const {
    return base.resolved(QUrl(u"appcast.xml"_s));
}

QUrl UpdateRig::payload(const QString& version) const {
    return base.resolved(QUrl(u"velisk-"_s + version));
}

Properties UpdateRig::properties() const {
    Properties properties{.feed = feed(),
                          .publicKey = QString::fromLatin1(m_publicKey.toBase64()),
                          .product = u"org.velisk.Example"_s,
                          .version = u"1.0"_s,
                          .executable = program()};
    properties.settling = std::chrono::seconds(0);
    return properties;
}

QByteArray UpdateRig::sign(const QByteArray& payload) const {
    QByteArray signature(crypto_sign_BYTES, Qt::Uninitialized);
    crypto_sign_detached(reinterpret_cast<unsigned char*>(signature.data()), nullptr,
                         reinterpret_cast<const unsigned char*>(payload.constData()),
                         static_cast<unsigned long long>(payload.size()),
                         reinterpret_cast<const unsigned char*>(m_secretKey.constData()));
    return signature;
}

void UpdateRig::publish(const QList<FeedItem>& items) {
    QString feed =
        u"<rss version='2.0' xmlns:sparkle='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>"_s;
    for (const FeedItem& item : items) {
        feed += itemText(item, payload(item.version), item.signature.isEmpty() ? sign(item.payload) : item.signature);
        download.bodies.insert(payload(item.version), item.payload);
    }
    download.bodies.insert(this->feed(), (feed + u"</channel></rss>"_s).toUtf8());
}

void UpdateRig::start(const Properties& properties) {
    updater.reset();
    updateWorker().waitForDone();
    worker().waitForDone();
    m_defaults = std::make_unique<UserDefaults>(m_folder + u"/preferences.json"_s, m_folder + u"/data"_s);
    const auto relaunch = [this](const QString& executable) { return this->relaunch(executable); };
    updater = std::make_unique<Updater>(properties, *m_defaults, *network, windows, relaunch);
    QObject::connect(updater.get(), &Updater::replaced, updater.get(), [this] { ++replaced; });
    updater->start();
}

void UpdateRig::waitUntilReady() const {
    QVERIFY(QTest::qWaitFor([this] { return updater->canCheckForUpdates.value(); }, patience));
}

void UpdateRig::waitForScene(const QString& kind) const {
    QVERIFY2(QTest::qWaitFor([&] { return windows.kind() == kind; }, patience), qPrintable(windows.kind()));
}

void UpdateRig::waitForDocuments(int count) const {
    QVERIFY(QTest::qWaitFor([&] { return download.documents >= count; }, patience));
}

void UpdateRig::turnTheLoop() {
    for (int turn = 0; turn < 50; ++turn) {
        worker().waitForDone();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void UpdateRig::installByHand() {
    windows.answers = {{u"found"_s, Answer::install}, {u"ready"_s, Answer::install}};
    updater->checkForUpdates();
    QVERIFY2(QTest::qWaitFor([this] { return replaced > 0 || windows.kind() == u"failed"_s; }, patience),
             qPrintable(windows.kind()));
    updateWorker().waitForDone();
}

Task<bool> UpdateRig::relaunch(QString executable) {
    relaunched.append(executable);
    do {
        NextTurn turn;
        co_await turn;
    } while (relaunchHangs);
    co_return successorComesUp;
}

void UpdateRig::setTime(const QDateTime& now) {
    g_now = now;
    Clock::setSource([] { return g_now; });
}

QDateTime UpdateRig::noon() {
    return {QDate(2026, 5, 14), QTime(12, 0), Qt::UTC};
}

} // namespace torvane::Updates
