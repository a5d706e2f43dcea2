#include "Platform/StatusNotifierItem.h"

#include "Support/LogLines.h"
#include "Support/StandInPanel.h"

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30000;

NotifierLook exampleLook() {
    NotifierLook look;
    look.title = u"Gas & more"_s;
    look.toolTipTitle = u"a < b"_s;
    look.toolTipText = u"c & d > e"_s;
    QImage icon(2, 1, QImage::Format_ARGB32_Premultiplied);
    icon.setPixelColor(0, 0, QColor(255, 0, 0, 255));
    icon.setPixelColor(1, 0, QColor(0, 0, 255, 51));
    look.icons = {icon};
    return look;
}

QList<NotifierPixmap> pixmaps(const QVariant& value) {
    return qdbus_cast<QList<NotifierPixmap>>(value);
}

} // namespace

class StatusNotifierItemTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_bus = std::make_unique<PrivateBus>();
        m_panel = std::make_unique<StandInPanel>(*m_bus);
        QVERIFY(m_panel->connection().isConnected());
    }

    void cleanup() {
        m_item.reset();
        m_panel.reset();
        m_bus.reset();
    }

    void anItemRegistersUnderANameOfItsProcess() {
        start();
        static const QRegularExpression form(u"^org\\.kde\\.StatusNotifierItem-%1-\\d+$"_s.arg(
            QLatin1StringView(std::to_string(QCoreApplication::applicationPid()))));
        QVERIFY(form.match(m_panel->services().value(0)).hasMatch());
        QVERIFY(m_panel->connection().interface()->isServiceRegistered(m_panel->services().value(0)));
    }

    void aPanelThatComesLaterGetsTheItem() {
        createItem();
        QSignalSpy changes(m_item.get(), &StatusNotifierItem::registeredChanged);
        m_item->show(exampleLook());
        QVERIFY(m_panel->appear());
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
        QCOMPARE(changes, QList<QVariantList>{{true}});
        QCOMPARE(m_panel->property(u"Title"_s).toString(), u"Gas & more"_s);
    }

    void eachPanelThatTakesOverGetsTheItem() {
        start();
        QVERIFY(m_panel->disappear());
        QTRY_VERIFY_WITH_TIMEOUT(!m_item->isRegistered(), limitMs);
        QVERIFY(m_panel->appear());
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
        StandInPanel other(*m_bus);
        QVERIFY(m_panel->disappear());
        QVERIFY(other.appear());
        QTRY_COMPARE_WITH_TIMEOUT(other.services().size(), 1, limitMs);
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
        QCOMPARE(m_panel->services().size(), 2);
        QCOMPARE(other.services().value(0), m_panel->services().value(0));
    }

    void aPanelThatNeverAnswersHoldsNothingUp() {
        m_panel->answers = false;
        QVERIFY(m_panel->appear());
        createItem();
        QTRY_COMPARE_WITH_TIMEOUT(m_panel->services().size(), 1, limitMs);
        m_item->show(exampleLook());
        QCOMPARE(m_panel->property(u"Title"_s).toString(), u"Gas & more"_s);
        QVERIFY(!m_item->isRegistered());
        m_panel->answers = true;
        QVERIFY(m_panel->disappear() && m_panel->appear());
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
    }

    void aPanelThatRefusesIsNoted() {
        m_panel->refuses = true;
        QVERIFY(m_panel->appear());
        QTest::ignoreMessage(QtWarningMsg, "The panel refused the item: not here");
        createItem();
        QTRY_COMPARE_WITH_TIMEOUT(m_panel->services().size(), 1, limitMs);
        QCOMPARE(m_panel->property(u"Id"_s).toString(), u"example"_s);
        QVERIFY(!m_item->isRegistered());
    }

    void aPanelThatOwnsItsNameBeforeItsObjectIsThereGetsTheItem() {
        m_panel->hideObject();
        QVERIFY(m_panel->appear());
        createItem();
        QSignalSpy tries(m_item.get(), &StatusNotifierItem::announced);
        QTRY_COMPARE_WITH_TIMEOUT(tries.size(), 2, limitMs); // The first was in vain.
        QVERIFY(!m_item->isRegistered());
        m_panel->showObject();
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
        QCOMPARE(m_panel->services().size(), 1);
    }

    void aPanelWhoseObjectNeverComesIsGivenUpUntilTheNextOne() {
        m_panel->hideObject();
        QVERIFY(m_panel->appear());
        const LogLines log("default");
        createItem();
        QSignalSpy tries(m_item.get(), &StatusNotifierItem::announced);
        QTRY_COMPARE_WITH_TIMEOUT(log.lines().size(), 1, 2 * limitMs);
        QVERIFY(log.lines()[0].contains(u"The panel refused the item"_s));
        QCOMPARE(tries.size(), 5);
        QVERIFY(!m_item->isRegistered());
        m_panel->showObject();
        QVERIFY(m_panel->disappear() && m_panel->appear());
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
    }

    void anAnswerOfAPanelThatHasGoneIsPassedOver() {
        m_panel->answers = false;
        QVERIFY(m_panel->appear());
        createItem();
        QTRY_COMPARE_WITH_TIMEOUT(m_panel->services().size(), 1, limitMs);
        StandInPanel other(*m_bus);
        QVERIFY(m_panel->disappear() && other.appear());
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
        m_panel->refuseNoted();
        QCOMPARE(m_panel->property(u"Id"_s), u"example"_s); // What was sent before has arrived with this.
        QVERIFY(m_item->isRegistered());
    }

    void withoutABusTheItemIsInvisible() {
        StatusNotifierItem item(QDBusConnection(u"no such connection"_s), u"example"_s, u"Communications"_s);
        item.show(exampleLook());
        item.showMenu({{1, u"Quit"_s}});
        QVERIFY(!item.isRegistered());
    }

    void aBusThatGoesAwayTakesNothingWithIt() {
        start();
        m_panel.reset();
        m_bus.reset();
        m_item->show(exampleLook());
        QTRY_VERIFY_WITH_TIMEOUT(!m_connection.isConnected(), limitMs);
    }

    void aTakenNameIsPassedOver() {
        start();
        const QString first = m_panel->services().value(0);
        const auto number = first.section(u'-', -1).toInt();
        const QString next = first.section(u'-', 0, -2) + u'-' + QLatin1StringView(std::to_string(number + 1));
        QVERIFY(m_panel->connection().registerService(next));
        StatusNotifierItem second(m_bus->connect(), u"second"_s, u"Communications"_s);
        QTRY_VERIFY_WITH_TIMEOUT(second.isRegistered(), limitMs);
        QCOMPARE(m_panel->services().size(), 2);
        QVERIFY(m_panel->services().value(1).endsWith(u'-' + QLatin1StringView(std::to_string(number + 2))));
    }

    void whereNamesAreForbiddenTheConnectionsOwnServes() {
        m_panel.reset();
        m_bus = std::make_unique<PrivateBus>(u"org.kde.StatusNotifierWatcher"_s);
        m_panel = std::make_unique<StandInPanel>(*m_bus);
        start();
        QCOMPARE(m_panel->services().value(0), m_connection.baseService());
        QCOMPARE(m_panel->property(u"Id"_s), u"example"_s);
    }

    void aSecondItemOfAConnectionStaysInvisible() {
        start();
        QTest::ignoreMessage(QtWarningMsg, "The panel item stays invisible: the connection has one already");
        const StatusNotifierItem second(m_connection, u"second"_s, u"Communications"_s);
        QCOMPARE(m_panel->property(u"Id"_s).toString(), u"example"_s);
        QVERIFY(!second.isRegistered());
    }

    void destroyingTheItemGivesItsNameBack() {
        start();
        m_item.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!m_panel->connection().interface()->isServiceRegistered(m_panel->services().value(0)),
                                 limitMs);
        QVERIFY(m_connection.isConnected());
        QVERIFY(!m_panel->property(u"Id"_s).isValid());
    }

    void valuesAreAsShown() {
        start();
        m_item->show(exampleLook());
        const QVariantMap values = m_panel->properties();
        QCOMPARE(values.value(u"Id"_s), u"example"_s);
        QCOMPARE(values.value(u"Category"_s), u"Communications"_s);
        QCOMPARE(values.value(u"Title"_s), u"Gas & more"_s);
        QCOMPARE(values.value(u"Status"_s), u"Active"_s);
        QCOMPARE(values.value(u"ItemIsMenu"_s), false);
        QCOMPARE(values.value(u"Menu"_s).value<QDBusObjectPath>().path(), u"/MenuBar"_s);
        QVERIFY(pixmaps(values.value(u"OverlayIconPixmap"_s)).isEmpty());
        const auto toolTip = qdbus_cast<NotifierToolTip>(values.value(u"ToolTip"_s));
        QCOMPARE(toolTip.title, u"a &lt; b"_s);
        QCOMPARE(toolTip.text, u"c &amp; d > e"_s);
    }

    void pixmapsAreArgbInNetworkOrderAndNotPremultiplied() {
        start();
        NotifierLook look = exampleLook();
        look.icons.append(QImage());
        m_item->show(look);
        const QList<NotifierPixmap> icons = pixmaps(m_panel->property(u"IconPixmap"_s));
        QCOMPARE(icons.size(), 1);
        QCOMPARE(icons[0].width, 2);
        QCOMPARE(icons[0].height, 1);
        QCOMPARE(icons[0].bytes.toHex(), QByteArray("ffff0000"
                                                    "330000ff"));
    }

    void onlyWhatChangedIsAnnounced_data() {
        QTest::addColumn<NotifierLook>("look");
        QTest::addColumn<QStringList>("expected");
        NotifierLook look = exampleLook();
        QTest::newRow("the same") << look << QStringList();
        look.icons[0] = look.icons[0].copy();
        QTest::newRow("an equal picture") << look << QStringList();
        look.icons[0].setPixelColor(0, 0, Qt::green);
        QTest::newRow("another picture") << look << QStringList{u"NewIcon"_s};
        look = exampleLook();
        look.title = u"other"_s;
        look.toolTipText = u"other"_s;
        QTest::newRow("other texts") << look << QStringList{u"NewTitle"_s, u"NewToolTip"_s};
        look = exampleLook();
        look.status = u"Passive"_s;
        look.iconName = u"a"_s;
        look.iconThemePath = u"/b"_s;
        QTest::newRow("name, path, status") << look << QStringList{u"NewIconThemePath"_s, u"NewIcon"_s, u"NewStatus"_s};
        look = exampleLook();
        look.label = NotifierLabel{u"12"_s, u"123"_s};
        QTest::newRow("a label") << look << QStringList{u"XAyatanaNewLabel"_s};
    }

    void onlyWhatChangedIsAnnounced() {
        QFETCH(NotifierLook, look);
        QFETCH(QStringList, expected);
        start();
        m_item->show(exampleLook());
        QCOMPARE(m_panel->signalsSoFar(), (QStringList{u"NewTitle"_s, u"NewIcon"_s, u"NewToolTip"_s}));
        m_item->show(look);
        QCOMPARE(m_panel->signalsSoFar(), expected);
        QCOMPARE(m_panel->services().size(), 1);
    }

    void theLabelExistsOnlyWhenThereIsOne() {
        start();
        m_item->show(exampleLook());
        QVERIFY(!m_panel->properties().contains(u"XAyatanaLabel"_s));
        QVERIFY(!m_panel->property(u"XAyatanaLabel"_s).isValid());
        NotifierLook look = exampleLook();
        look.label = NotifierLabel{u"12"_s, u"123"_s};
        m_item->show(look);
        QCOMPARE(m_panel->properties().value(u"XAyatanaLabel"_s), u"12"_s);
        QCOMPARE(m_panel->property(u"XAyatanaLabelGuide"_s), u"123"_s);
        m_item->show(exampleLook());
        QVERIFY(!m_panel->properties().contains(u"XAyatanaLabelGuide"_s));
    }

    void clicksArriveWithTheirPosition() {
        start();
        QSignalSpy activated(m_item.get(), &StatusNotifierItem::activated);
        QSignalSpy menu(m_item.get(), &StatusNotifierItem::contextMenuRequested);
        click(u"Activate"_s);
        QTRY_COMPARE_WITH_TIMEOUT(activated, QList<QVariantList>{{QPoint(1163, -16)}}, limitMs);
        click(u"SecondaryActivate"_s); // Means nothing here.
        click(u"ContextMenu"_s);
        QTRY_COMPARE_WITH_TIMEOUT(menu, QList<QVariantList>{{QPoint(1163, -16)}}, limitMs);
        QCOMPARE(activated.size(), 1);
    }

    void aClickIsAnsweredBeforeItIsHandled() {
        start();
        QDBusMessage call = QDBusMessage::createMethodCall(m_panel->services().value(0), u"/StatusNotifierItem"_s,
                                                           u"org.kde.StatusNotifierItem"_s, u"Activate"_s);
        call.setArguments({1, 2});
        const QDBusPendingCall answer = m_panel->connection().asyncCall(call);
        bool handled = false;
        connect(m_item.get(), &StatusNotifierItem::activated, this, [&] {
            QTRY_VERIFY_WITH_TIMEOUT(answer.isFinished(), limitMs); // A window may be shown from here, and stay.
            handled = true;
        });
        QTRY_VERIFY_WITH_TIMEOUT(handled, limitMs);
    }

    void theItemMayGoWhileItsClickIsHandled() {
        start();
        connect(m_item.get(), &StatusNotifierItem::activated, this, [this] { m_item.reset(); });
        click(u"Activate"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!m_item, limitMs);
    }

private:
    void createItem() {
        m_connection = m_bus->connect();
        m_item = std::make_unique<StatusNotifierItem>(m_connection, u"example"_s, u"Communications"_s);
    }

    void start() {
        QVERIFY(m_panel->appear());
        createItem();
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
    }

    void click(const QString& method) {
        QCOMPARE(errorName(m_panel->call(u"org.kde.StatusNotifierItem"_s, method, {1163, -16})), QString());
    }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<StandInPanel> m_panel;
    QDBusConnection m_connection{QString()};
    std::unique_ptr<StatusNotifierItem> m_item;
};

QTEST_GUILESS_MAIN(StatusNotifierItemTest)
#include "StatusNotifierItemTest.moc"
