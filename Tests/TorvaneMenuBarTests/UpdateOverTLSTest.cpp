#include "Support/StandInServer.h"
#include "Support/TestConfig.h"
#include "Support/TestFiles.h"
#include "TorvaneUpdatesTests/UpdateRig.h"
#include "UpdateDownload.h"

#include <QTest>

using namespace torvane;
using namespace torvane::Updates;
using namespace Qt::StringLiterals;
using Ending = StandInAnswer::Ending;

Q_DECLARE_METATYPE(torvane::StandInAnswer)

namespace {

const QByteArray feedPath = "/torvane/appcast.xml";
const QByteArray payloadPath = "/torvane/velisk-2.0";

} // namespace

/// Whole updates by the program's own network, from a server that may misbehave.
class UpdateOverTLSTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca")); }

    void init() {
        m_server = std::make_unique<StandInServer>();
        m_rig = std::make_unique<UpdateRig>();
        m_rig->network = &m_download;
        m_rig->base = m_server->url(u"/torvane/"_s);
        m_rig->publishNew();
        serve(*m_server);
        TestFiles::put(m_rig->folder() + u"/preferences.json"_s, R"({"automaticallyChecksForUpdates": false})");
        m_rig->start();
        m_rig->waitUntilReady();
    }

    void cleanup() {
        m_rig.reset();
        m_server.reset();
    }

    void anUpdateComesOverTheNetwork() {
        m_rig->installByHand();
        QCOMPARE(m_rig->replaced, 1);
        QCOMPARE(TestFiles::contentOf(m_rig->program()), UpdateRig::sample("new"));
        QCOMPARE(m_rig->windows.progress.last(), UpdateRig::sample("new").size());
    }

    void aPayloadThatArrivesBadlyChangesNothing_data() {
        QTest::addColumn<StandInAnswer>("answer");
        const QByteArray payload = UpdateRig::sample("new");
        QTest::newRow("not there") << StandInAnswer::status(404);
        QTest::newRow("a byte too many") << StandInAnswer::ok(payload + '\0');
        QTest::newRow("a byte too few") << StandInAnswer::ok(payload.chopped(1));
        QTest::newRow("without end") << StandInAnswer::endlessBody();
        QTest::newRow("cut off") << StandInAnswer::ok(payload).cutShort(1000, Ending::reset);
        QTest::newRow("another of the same length") << StandInAnswer::ok(QByteArray(payload.size(), 'x'));
        QTest::newRow("redirected away from HTTPS")
            << StandInAnswer::redirect(302, "http://localhost/torvane/velisk-2.0");
        QTest::newRow("redirected to a file") << StandInAnswer::redirect(302, "file:///bin/true");
    }

    void aPayloadThatArrivesBadlyChangesNothing() {
        QFETCH(StandInAnswer, answer);
        m_server->on(payloadPath, answer);
        m_rig->installByHand();
        requireFailureWithoutTrace();
    }

    void aFeedThatArrivesBadlyIsAFailure_data() {
        QTest::addColumn<StandInAnswer>("answer");
        QTest::newRow("not there") << StandInAnswer::status(500);
        QTest::newRow("larger than a mebibyte") << StandInAnswer::ok(QByteArray(1024 * 1024 + 1, ' '));
        QTest::newRow("without end") << StandInAnswer::endlessBody();
        QTest::newRow("redirected away from HTTPS") << StandInAnswer::redirect(301, "http://localhost/feed");
        QTest::newRow("entities that grow")
            << StandInAnswer::ok("<!DOCTYPE a [<!ENTITY b \"bbbb\"><!ENTITY c \"&b;&b;&b;\">]><rss "
                                 "version='2.0'><channel>&c;</channel></rss>");
    }

    void aFeedThatArrivesBadlyIsAFailure() {
        QFETCH(StandInAnswer, answer);
        m_server->on(feedPath, answer);
        m_rig->installByHand();
        requireFailureWithoutTrace();
    }

    void aFeedElsewhereThanOnHTTPSIsNotRead_data() {
        QTest::addColumn<QUrl>("feed");
        QTest::newRow("HTTP") << QUrl(u"http://localhost/torvane/appcast.xml"_s);
        QTest::newRow("a file") << QUrl(u"file:///etc/hostname"_s);
    }

    void aFeedElsewhereThanOnHTTPSIsNotRead() {
        QFETCH(QUrl, feed);
        Properties properties = m_rig->properties();
        properties.feed = feed;
        m_rig->start(properties);
        m_rig->waitUntilReady();
        m_rig->installByHand();
        requireFailureWithoutTrace();
    }

    void aServerWithAnothersCertificateIsNotAsked() {
        StandInServer stranger(StandInServer::certificatePath("stranger"));
        m_rig->base = stranger.url(u"/torvane/"_s);
        serve(stranger);
        m_rig->start();
        m_rig->waitUntilReady();
        m_rig->installByHand();
        requireFailureWithoutTrace();
        QCOMPARE(stranger.requests().size(), 0);
    }

private:
    void serve(StandInServer& server) const {
        server.on(feedPath, StandInAnswer::ok(m_rig->download.bodies.value(m_rig->feed())));
        server.on(payloadPath, StandInAnswer::ok(UpdateRig::sample("new")));
    }

    void requireFailureWithoutTrace() const {
        QCOMPARE(m_rig->windows.kind(), u"failed"_s);
        QVERIFY2(m_rig->windows.cause().endsWith(u'.'), qUtf8Printable(m_rig->windows.cause()));
        QCOMPARE(m_rig->replaced, 0);
        QCOMPARE(TestFiles::contentOf(m_rig->program()), UpdateRig::sample("old"));
        QCOMPARE(TestFiles::entriesOf(m_rig->programFolder()), QStringList{u"velisk"_s});
    }

    UpdateDownload m_download;
    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<UpdateRig> m_rig;
};

QTEST_GUILESS_MAIN(UpdateOverTLSTest)
#include "UpdateOverTLSTest.moc"
