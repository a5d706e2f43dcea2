#include "Platform/ColorScheme.h"

#include "Support/PrivateBus.h"
#include "Support/StandInPortal.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

/// The palette of a desktop whose windows have this background.
QPalette paletteOf(Qt::GlobalColor window) {
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    return palette;
}

/// Everything that was sent to a connection until now has arrived when this returns.
void settle(PrivateBus& bus, const QDBusConnection& connection) {
    const QDBusConnection other = bus.connect();
    answer(connection,
           QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
    QCoreApplication::processEvents();
}

} // namespace

class ColorSchemeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QGuiApplication::setPalette(paletteOf(Qt::white)); }
    void thePortalsChoiceCounts_data();
    void thePortalsChoiceCounts();
    void theChoiceIsAskedForByName();
    void anAnswerOfAnotherKindIsNoChoice_data();
    void anAnswerOfAnotherKindIsNoChoice();
    void aChangeIsFollowed();
    void otherSettingsAreNotHeard();
    void aChangeBackToNoChoiceFallsBackToThePalette();
    void aPortalThatAppearsLaterIsAsked();
    void aPortalThatIsExchangedIsAskedAgain();
    void aPortalThatHangsIsNotWaitedFor();
    void aLateAnswerIsHeard();
    void anEarlierChoiceEndsWhenTheNewPortalHangs();
    void aChangeOutrunsTheAnswer();
    void withoutABusThePaletteCounts();
    void itMayGoWhileAQuestionIsOpen();
};

void ColorSchemeTest::thePortalsChoiceCounts_data() {
    QTest::addColumn<Qt::GlobalColor>("window");
    QTest::addColumn<uint>("scheme");
    QTest::addColumn<bool>("isDark");
    QTest::newRow("dark, over a light palette") << Qt::white << 1U << true;
    QTest::newRow("light, over a dark palette") << Qt::black << 2U << false;
    QTest::newRow("no choice, light palette") << Qt::white << 0U << false;
    QTest::newRow("no choice, dark palette") << Qt::black << 0U << true;
    QTest::newRow("a number of the future, dark palette") << Qt::black << 3U << true;
}

void ColorSchemeTest::thePortalsChoiceCounts() {
    QFETCH(Qt::GlobalColor, window);
    QFETCH(uint, scheme);
    QFETCH(bool, isDark);
    QGuiApplication::setPalette(paletteOf(window));
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.scheme = StandInPortal::twiceInVariant(scheme);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const QDBusConnection connection = bus.connect();
    const ColorScheme colorScheme(connection, palette);
    QCOMPARE(colorScheme.isDark(), window == Qt::black); // Nothing is waited for.
    QTRY_COMPARE(portal.questions.size(), 1);
    settle(bus, connection);
    QTRY_COMPARE(colorScheme.isDark(), isDark);
}

void ColorSchemeTest::theChoiceIsAskedForByName() {
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.scheme = StandInPortal::twiceInVariant(1);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const ColorScheme colorScheme(bus.connect(), palette);
    QTRY_VERIFY(colorScheme.isDark());
    QCOMPARE(portal.questions, QList<QVariantList>({{StandInPortal::appearanceGroup(), u"color-scheme"_s}}));
}

void ColorSchemeTest::anAnswerOfAnotherKindIsNoChoice_data() {
    QTest::addColumn<QVariant>("answer");
    QTest::newRow("an error") << QVariant();
    QTest::newRow("not in a variant") << QVariant(2U);
    QTest::newRow("a text") << StandInPortal::inVariant(StandInPortal::inVariant(u"light"_s));
    QTest::newRow("a signed number") << StandInPortal::inVariant(StandInPortal::inVariant(2));
    QTest::newRow("a list") << StandInPortal::inVariant(StandInPortal::inVariant(QStringList{u"2"_s}));
    QTest::newRow("a text outside") << QVariant(u"2"_s);
}

void ColorSchemeTest::anAnswerOfAnotherKindIsNoChoice() {
    QFETCH(QVariant, answer);
    QGuiApplication::setPalette(paletteOf(Qt::black));
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.scheme = StandInPortal::twiceInVariant(2);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const QDBusConnection connection = bus.connect();
    const ColorScheme colorScheme(connection, palette);
    QTRY_VERIFY(!colorScheme.isDark());

    // A new owner of the name is asked again.
    QVERIFY(portal.disappear());
    portal.scheme = answer;
    QVERIFY(portal.appear());
    QTRY_COMPARE(colorScheme.preference(), ColorPreference::none);
    QVERIFY(colorScheme.isDark());

    portal.announce(2);
    QTRY_VERIFY(!colorScheme.isDark()); // It goes on listening.
}

void ColorSchemeTest::aChangeIsFollowed() {
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.scheme = StandInPortal::twiceInVariant(0);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const ColorScheme colorScheme(bus.connect(), palette);
    QSignalSpy changes(&colorScheme, &ColorScheme::isDarkChanged);
    QTRY_COMPARE(portal.questions.size(), 1);
    for (const uint scheme : {1U, 1U, 2U, 1U})
        portal.announce(scheme);
    QTRY_COMPARE(changes.size(), 3);
    QVERIFY(changes.at(0).at(0).toBool());
    QVERIFY(!changes.at(1).at(0).toBool());
    QVERIFY(changes.at(2).at(0).toBool());
    QCOMPARE(portal.questions.size(), 1); // A signal brings its value along.
}

void ColorSchemeTest::otherSettingsAreNotHeard() {
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.scheme = StandInPortal::twiceInVariant(2);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const ColorScheme colorScheme(bus.connect(), palette);
    QTRY_COMPARE(colorScheme.preference(), ColorPreference::light);
    QSignalSpy changes(&colorScheme, &ColorScheme::isDarkChanged);
    portal.announce(u"org.gnome.desktop.interface"_s, u"color-scheme"_s, StandInPortal::inVariant(1U));
    portal.announce(StandInPortal::appearanceGroup(), u"contrast"_s, StandInPortal::inVariant(1U));
    portal.announce(StandInPortal::appearanceGroup(), u"color-scheme"_s, u"1"_s); // Not the signal's form.
    portal.announce(0); // What is heard comes in order: the others were here before.
    QTRY_COMPARE(colorScheme.preference(), ColorPreference::none);
    QCOMPARE(changes.size(), 0);
}

void ColorSchemeTest::aChangeBackToNoChoiceFallsBackToThePalette() {
    QGuiApplication::setPalette(paletteOf(Qt::black));
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.scheme = StandInPortal::twiceInVariant(2);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const ColorScheme colorScheme(bus.connect(), palette);
    QTRY_VERIFY(!colorScheme.isDark());
    portal.announce(0);
    QTRY_VERIFY(colorScheme.isDark());
    portal.announce(StandInPortal::appearanceGroup(), u"color-scheme"_s, StandInPortal::inVariant(u"light"_s));
    portal.announce(2);
    QTRY_VERIFY(!colorScheme.isDark());
}

void ColorSchemeTest::aPortalThatAppearsLaterIsAsked() {
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.scheme = StandInPortal::twiceInVariant(1);
    const ApplicationPalette palette;
    const QDBusConnection connection = bus.connect();
    const ColorScheme colorScheme(connection, palette);
    settle(bus, connection);
    QVERIFY(!colorScheme.isDark());
    QVERIFY(portal.appear());
    QTRY_VERIFY(colorScheme.isDark());
}

void ColorSchemeTest::aPortalThatIsExchangedIsAskedAgain() {
    PrivateBus bus;
    const ApplicationPalette palette;
    auto first = std::make_unique<StandInPortal>(bus);
    first->scheme = StandInPortal::twiceInVariant(1);
    QVERIFY(first->appear());
    const ColorScheme colorScheme(bus.connect(), palette);
    QSignalSpy changes(&colorScheme, &ColorScheme::isDarkChanged);
    QTRY_COMPARE(changes.size(), 1);
    first.reset();
    StandInPortal same(bus);
    same.scheme = StandInPortal::twiceInVariant(1);
    QVERIFY(same.appear());
    QTRY_COMPARE(same.questions.size(), 1);
    QCOMPARE(changes.size(), 1); // The windows do not flash while a portal restarts.
    QVERIFY(same.disappear());
    StandInPortal other(bus);
    other.scheme = StandInPortal::twiceInVariant(2);
    QVERIFY(other.appear());
    QTRY_COMPARE(changes.size(), 2);
    QVERIFY(!colorScheme.isDark());
}

void ColorSchemeTest::aPortalThatHangsIsNotWaitedFor() {
    QGuiApplication::setPalette(paletteOf(Qt::black));
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.answers = false;
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const ColorScheme colorScheme(bus.connect(), palette);
    QVERIFY(colorScheme.isDark());
    QTRY_COMPARE(portal.questions.size(), 1);
    QVERIFY(colorScheme.isDark());
}

void ColorSchemeTest::aLateAnswerIsHeard() {
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.answers = false;
    portal.scheme = StandInPortal::twiceInVariant(1);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const ColorScheme colorScheme(bus.connect(), palette);
    QTRY_COMPARE(portal.questions.size(), 1);
    portal.answerNoted();
    QTRY_VERIFY(colorScheme.isDark());
}

void ColorSchemeTest::anEarlierChoiceEndsWhenTheNewPortalHangs() {
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.scheme = StandInPortal::twiceInVariant(1);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const ColorScheme colorScheme(bus.connect(), palette);
    QTRY_VERIFY(colorScheme.isDark());
    QVERIFY(portal.disappear());
    portal.answers = false;
    QVERIFY(portal.appear());
    QTRY_COMPARE(portal.questions.size(), 2);
    QTRY_VERIFY_WITH_TIMEOUT(!colorScheme.isDark(), 20'000);
    portal.answerNoted();
    QTRY_VERIFY(colorScheme.isDark());
}

void ColorSchemeTest::aChangeOutrunsTheAnswer() {
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.answers = false;
    portal.scheme = StandInPortal::twiceInVariant(2);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const QDBusConnection connection = bus.connect();
    const ColorScheme colorScheme(connection, palette);
    QTRY_COMPARE(portal.questions.size(), 1);
    portal.announce(1);
    QTRY_VERIFY(colorScheme.isDark());
    portal.answerNoted();
    settle(bus, connection);
    QVERIFY(colorScheme.isDark());
}

void ColorSchemeTest::withoutABusThePaletteCounts() {
    const QDBusConnection none = QDBusConnection::connectToBus(u"unix:path=/nonexistent"_s, u"none"_s);
    QVERIFY(!none.isConnected());
    QGuiApplication::setPalette(paletteOf(Qt::black));
    const ApplicationPalette dark;
    QVERIFY(ColorScheme(none, dark).isDark());
    QGuiApplication::setPalette(paletteOf(Qt::white));
    const ApplicationPalette light;
    QVERIFY(!ColorScheme(none, light).isDark());
    QDBusConnection::disconnectFromBus(u"none"_s);
}

void ColorSchemeTest::itMayGoWhileAQuestionIsOpen() {
    PrivateBus bus;
    StandInPortal portal(bus);
    portal.answers = false;
    portal.scheme = StandInPortal::twiceInVariant(1);
    QVERIFY(portal.appear());
    const ApplicationPalette palette;
    const QDBusConnection connection = bus.connect();
    auto colorScheme = std::make_unique<ColorScheme>(connection, palette);
    QTRY_COMPARE(portal.questions.size(), 1);
    colorScheme.reset();
    portal.answerNoted();
    portal.announce(2);
    settle(bus, connection); // The sanitizer would tell.
}

QTEST_MAIN(ColorSchemeTest)
#include "ColorSchemeTest.moc"
