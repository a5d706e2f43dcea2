#include "Platform/StatusNotifierItem.h"
#include "Support/StandInPanel.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30000;

const QString menuInterface = u"com.canonical.dbusmenu"_s;
const QString invalid = u"org.freedesktop.DBus.Error.InvalidArgs"_s;

const QList<MenuEntry> entries{{1, u"Refresh _Now"_s}, {2, {}, true, true}, {3, u"Never"_s, false}, {4, u"Quit"_s}};

QVariant variant(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

MenuLayout layoutOf(const QDBusMessage& reply) {
    return qdbus_cast<MenuLayout>(reply.arguments().value(1));
}

QList<int> idsOf(const MenuLayout& layout) {
    QList<int> ids;
    for (const QVariant& child : layout.children)
        ids.append(qdbus_cast<MenuLayout>(child).id);
    return ids;
}

} // namespace

class DBusMenuTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_bus = std::make_unique<PrivateBus>();
        m_panel = std::make_unique<StandInPanel>(*m_bus);
        QVERIFY(m_panel->appear());
        m_item = std::make_unique<StatusNotifierItem>(m_bus->connect(), u"example"_s, u"Communications"_s);
        m_item->showMenu(entries);
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isRegistered(), limitMs);
        m_panel->signalsSoFar();
    }

    void cleanup() {
        m_item.reset();
        m_panel.reset();
        m_bus.reset();
    }

    void theLayoutHoldsTheEntriesInOrder() {
        const QDBusMessage reply = call(u"GetLayout"_s, {0, -1, QStringList()});
        QCOMPARE(reply.signature(), u"u(ia{sv}av)"_s);
        const MenuLayout root = layoutOf(reply);
        QCOMPARE(root.id, 0);
        QCOMPARE(root.properties, (QVariantMap{{u"children-display"_s, u"submenu"_s}}));
        QCOMPARE(idsOf(root), (QList<int>{1, 2, 3, 4}));
        const auto first = qdbus_cast<MenuLayout>(root.children.at(0));
        QCOMPARE(first.properties, (QVariantMap{{u"label"_s, u"Refresh __Now"_s}, {u"enabled"_s, true}}));
        const auto second = qdbus_cast<MenuLayout>(root.children.at(1));
        QCOMPARE(second.properties, (QVariantMap{{u"type"_s, u"separator"_s}}));
    }

    void theLayoutGoesAsDeepAsAsked() {
        QVERIFY(idsOf(layoutOf(call(u"GetLayout"_s, {0, 0, QStringList()}))).isEmpty());
        QCOMPARE(idsOf(layoutOf(call(u"GetLayout"_s, {0, 1, QStringList()}))).size(), 4);
        const MenuLayout leaf = layoutOf(call(u"GetLayout"_s, {4, -1, QStringList{u"label"_s}}));
        QCOMPARE(leaf.id, 4);
        QCOMPARE(leaf.properties, (QVariantMap{{u"label"_s, u"Quit"_s}}));
        QVERIFY(leaf.children.isEmpty());
    }

    void propertiesComeForTheIdsAndNamesAskedFor() {
        const QDBusMessage all = call(u"GetGroupProperties"_s, {QVariant::fromValue(QList<int>()), QStringList()});
        QCOMPARE(qdbus_cast<QList<MenuItemProperties>>(all.arguments().value(0)).size(), 5);
        const QDBusMessage some = call(u"GetGroupProperties"_s, {QVariant::fromValue(QList<int>{3, 99, 3, -7}),
                                                                 QStringList{u"enabled"_s, u"no"_s}});
        const auto group = qdbus_cast<QList<MenuItemProperties>>(some.arguments().value(0));
        QCOMPARE(group.size(), 1);
        QCOMPARE(group[0].properties, (QVariantMap{{u"enabled"_s, false}}));
        const QDBusMessage label = call(u"GetProperty"_s, {4, u"label"_s});
        QCOMPARE(label.arguments().value(0).value<QDBusVariant>().variant(), u"Quit"_s);
    }

    void onlyClicksOnEnabledEntriesTrigger() {
        QSignalSpy triggered(m_item.get(), &StatusNotifierItem::menuEntryTriggered);
        for (const int id : {0, 1, 2, 3})
            QCOMPARE(errorName(event(id, u"hovered"_s)), QString());
        for (const int id : {0, 2, 3, 4})
            QCOMPARE(errorName(event(id, u"clicked"_s)), QString());
        QTRY_COMPARE_WITH_TIMEOUT(triggered, QList<QVariantList>{{4}}, limitMs);
        m_panel->signalsSoFar();
        QCOMPARE(triggered.size(), 1);
    }

    void aGroupOfEventsTriggersTheKnownOnes() {
        QSignalSpy triggered(m_item.get(), &StatusNotifierItem::menuEntryTriggered);
        const QVariantMap nested{{u"a"_s, QVariantList{1, u"b"_s, QVariantMap{{u"c"_s, QStringList{u"d"_s}}}}}};
        const QList<MenuEvent> events{
            {1, u"clicked"_s, nested, 0}, {77, u"clicked"_s, u"x"_s, 1}, {4, u"clicked"_s, 0, 2}};
        const QDBusMessage reply = call(u"EventGroup"_s, {QVariant::fromValue(events)});
        QCOMPARE(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>{77});
        QTRY_COMPARE_WITH_TIMEOUT(triggered, (QList<QVariantList>{{1}, {4}}), limitMs);
        QCOMPARE(errorName(call(u"EventGroup"_s, {QVariant::fromValue(events.mid(1, 1))})), invalid);
        const QDBusMessage none = call(u"EventGroup"_s, {QVariant::fromValue(QList<MenuEvent>())});
        QCOMPARE(none.signature(), u"ai"_s);
    }

    void showingNeedsNoUpdate() {
        QCOMPARE(call(u"AboutToShow"_s, {0}).arguments(), QVariantList{false});
        const QDBusMessage group = call(u"AboutToShowGroup"_s, {QVariant::fromValue(QList<int>{0, 4, 5, -1})});
        QVERIFY(qdbus_cast<QList<int>>(group.arguments().value(0)).isEmpty());
        QCOMPARE(qdbus_cast<QList<int>>(group.arguments().value(1)), (QList<int>{5, -1}));
    }

    void whatDoesNotExistIsAnError_data() {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::newRow("layout") << u"GetLayout"_s << QVariantList{5, -1, QStringList()};
        QTest::newRow("property of nothing") << u"GetProperty"_s << QVariantList{-1, u"label"_s};
        QTest::newRow("unknown property") << u"GetProperty"_s << QVariantList{1, u"colour"_s};
        QTest::newRow("event") << u"Event"_s << QVariantList{2147483647, u"clicked"_s, variant(0), 0U};
        QTest::newRow("about to show") << u"AboutToShow"_s << QVariantList{-2147483647};
        QTest::newRow("event with a text as id") << u"Event"_s << QVariantList{u"1"_s, u"clicked"_s, variant(0), 0U};
        QTest::newRow("event without data") << u"Event"_s << QVariantList{1, u"clicked"_s};
        QTest::newRow("layout for numbers")
            << u"GetLayout"_s << QVariantList{0, -1, QVariant::fromValue(QList<int>{1})};
        QTest::newRow("events of another kind") << u"EventGroup"_s << QVariantList{QStringList{u"clicked"_s}};
        QTest::newRow("too many arguments") << u"AboutToShow"_s << QVariantList{0, 0};
    }

    void whatDoesNotExistIsAnError() {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QSignalSpy triggered(m_item.get(), &StatusNotifierItem::menuEntryTriggered);
        QCOMPARE(errorName(call(method, arguments)), invalid);
        m_panel->signalsSoFar();
        QVERIFY(triggered.isEmpty());
    }

    void equalEntriesCostNoMessage() {
        m_item->showMenu(entries);
        QVERIFY(m_panel->signalsSoFar().isEmpty());
    }

    void changedPropertiesKeepTheLayout() {
        const QVariant revision = call(u"GetLayout"_s, {0, 0, QStringList()}).arguments().value(0);
        QList<MenuEntry> changed = entries;
        changed[2].enabled = true;
        m_item->showMenu(changed);
        QCOMPARE(m_panel->signalsSoFar(), QStringList{u"ItemsPropertiesUpdated"_s});
        QCOMPARE(call(u"GetLayout"_s, {0, 0, QStringList()}).arguments().value(0), revision);
    }

    void otherEntriesAreANewLayout() {
        const uint revision = call(u"GetLayout"_s, {0, 0, QStringList()}).arguments().value(0).toUInt();
        m_item->showMenu(entries.mid(0, 2));
        QCOMPARE(m_panel->signalsSoFar(), QStringList{u"LayoutUpdated"_s});
        const QDBusMessage reply = call(u"GetLayout"_s, {0, -1, QStringList()});
        QVERIFY(reply.arguments().value(0).toUInt() > revision);
        QCOMPARE(idsOf(layoutOf(reply)), (QList<int>{1, 2}));
    }

private:
    QDBusMessage call(const QString& method, const QVariantList& arguments) {
        return m_panel->call(menuInterface, method, arguments);
    }

    QDBusMessage event(int id, const QString& kind) { return call(u"Event"_s, {id, kind, variant(0), 0U}); }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<StandInPanel> m_panel;
    std::unique_ptr<StatusNotifierItem> m_item;
};

QTEST_GUILESS_MAIN(DBusMenuTest)
#include "DBusMenuTest.moc"
