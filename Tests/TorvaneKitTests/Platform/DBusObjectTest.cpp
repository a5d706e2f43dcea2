#include "Platform/DBusObject.h"

#include "Support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QTest>
#include <QXmlStreamReader>

#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

const QString path = u"/here"_s;
const QString interfaceName = u"org.example.Thing"_s;
const QString propertiesName = u"org.freedesktop.DBus.Properties"_s;

/// Every element of the document as "element name" in order; empty when it is no XML.
QStringList elements(const QString& xml) {
    QStringList all;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement)
            all.append(reader.name().toString() + u' ' + reader.attributes().value(u"name"_s).toString());
    }
    return reader.hasError() ? QStringList() : all;
}

} // namespace

class DBusObjectTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_bus = std::make_unique<PrivateBus>();
        m_caller = m_bus->connect();
        const QDBusConnection owner = m_bus->connect();
        m_owner = owner.baseService();
        m_extra = QVariant();
        m_object = std::make_unique<DBusObject>(owner, path, interface());
        QVERIFY(m_object->publish());
    }

    void cleanup() {
        m_object.reset();
        m_bus.reset();
    }

    void aMethodAnswersWithAndWithoutItsInterface() {
        QCOMPARE(call(interfaceName, u"Join"_s, {u"a"_s, u"b"_s}).arguments(), QVariantList{u"ab"_s});
        QCOMPARE(call({}, u"Join"_s, {u"a"_s, u"b"_s}).arguments(), QVariantList{u"ab"_s});
    }

    void wrongCallsAreErrors_data() {
        QTest::addColumn<QString>("interface");
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("error");
        const QVariant variant = QVariant::fromValue(QDBusVariant(1));
        const auto row = [](const char* name, const QString& interface, const char* method,
                            const QVariantList& arguments, const char* error) {
            QTest::newRow(name) << interface << QString::fromLatin1(method) << arguments
                                << u"org.freedesktop.DBus.Error."_s + QString::fromLatin1(error);
        };
        row("no such method", interfaceName, "Split", {}, "UnknownMethod");
        row("no such method, no interface", {}, "Split", {}, "UnknownMethod");
        row("no such interface", u"org.example.Other"_s, "Join", {u"a"_s, u"b"_s}, "UnknownInterface");
        row("too few arguments", interfaceName, "Join", {u"a"_s}, "InvalidArgs");
        row("too many arguments", interfaceName, "Join", {u"a"_s, u"b"_s, u"c"_s}, "InvalidArgs");
        row("numbers for texts", interfaceName, "Join", {1, 2}, "InvalidArgs");
        row("nothing of this name", interfaceName, "Join", {u""_s, u""_s}, "InvalidArgs");
        row("get nothing", propertiesName, "Get", {}, "InvalidArgs");
        row("get by number", propertiesName, "Get", {interfaceName, 1}, "InvalidArgs");
        row("get an unknown property", propertiesName, "Get", {interfaceName, u"Depth"_s}, "UnknownProperty");
        row("get one that is absent", propertiesName, "Get", {interfaceName, u"Extra"_s}, "UnknownProperty");
        row("get from an unknown interface", propertiesName, "Get", {u"x.y"_s, u"Size"_s}, "UnknownInterface");
        row("get all by number", propertiesName, "GetAll", {1}, "InvalidArgs");
        row("get all of an unknown interface", propertiesName, "GetAll", {u"x.y"_s}, "UnknownInterface");
        row("set", propertiesName, "Set", {interfaceName, u"Size"_s, variant}, "PropertyReadOnly");
        row("set an unknown property", propertiesName, "Set", {interfaceName, u"Depth"_s, variant}, "UnknownProperty");
        row("set in an unknown interface", propertiesName, "Set", {u"x.y"_s, u"Size"_s, variant}, "UnknownInterface");
        row("set without a value", propertiesName, "Set", {interfaceName, u"Size"_s}, "InvalidArgs");
        row("no such method of properties", propertiesName, "Clear", {}, "UnknownMethod");
    }

    void wrongCallsAreErrors() {
        QFETCH(QString, interface);
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, error);
        QCOMPARE(errorName(call(interface, method, arguments)), error);
        QCOMPARE(call(interfaceName, u"Join"_s, {u"a"_s, u"b"_s}).arguments(), QVariantList{u"ab"_s});
    }

    void propertiesAreReadAloneAndTogether() {
        const QDBusMessage one = call(propertiesName, u"Get"_s, {interfaceName, u"Size"_s});
        QCOMPARE(one.arguments().value(0).value<QDBusVariant>().variant(), 7);
        for (const QString& name : {interfaceName, QString()})
            QCOMPARE(allProperties(name), (QVariantMap{{u"Size"_s, 7}}));
        m_extra = u"now"_s;
        QCOMPARE(allProperties(interfaceName), (QVariantMap{{u"Size"_s, 7}, {u"Extra"_s, u"now"_s}}));
    }

    void introspectionIsXmlOfWhatIsThere() {
        const QStringList own{u"method Join"_s,   u"arg "_s,           u"arg "_s, u"arg "_s,
                              u"property Size"_s, u"signal Changed"_s, u"arg "_s};
        for (const QString& interface : {u"org.freedesktop.DBus.Introspectable"_s, QString()}) {
            const QStringList found = elements(call(interface, u"Introspect"_s).arguments().value(0).toString());
            const qsizetype start = found.indexOf(u"interface org.example.Thing"_s);
            QVERIFY(start >= 0);
            QCOMPARE(found.mid(start + 1, own.size()), own);
            QCOMPARE(found.count(u"interface org.freedesktop.DBus.Properties"_s), 1);
        }
        m_extra = u"now"_s;
        const QDBusMessage reply = call(u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s);
        QVERIFY(elements(reply.arguments().value(0).toString()).contains(u"property Extra"_s));
    }

    void signalsAreSentOncePublished() {
        DBusObject hidden(m_caller, path, interface());
        hidden.send("Changed"_L1, {1});
        QVERIFY(m_caller.connect({}, path, interfaceName, u"Changed"_s, this, SLOT(receive(QDBusMessage))));
        call(interfaceName, u"Join"_s, {u"a"_s, u"b"_s}); // With the answer, the bus knows what is listened to.
        m_object->send("Changed"_L1, {2});
        QTRY_COMPARE_WITH_TIMEOUT(m_received, QVariantList{2}, 30000);
    }

    void anObjectThatIsGoneAnswersNoMore() {
        m_object.reset();
        QCOMPARE(errorName(call(interfaceName, u"Join"_s, {u"a"_s, u"b"_s})),
                 u"org.freedesktop.DBus.Error.UnknownObject"_s);
    }

public Q_SLOTS:
    void receive(const QDBusMessage& signal) { m_received += signal.arguments(); }

private:
    DBusInterface interface() {
        const auto join = [](const QVariantList& arguments) {
            const QString both = arguments[0].toString() + arguments[1].toString();
            return both.isEmpty() ? std::nullopt : dbusAnswer(both);
        };
        return {
            "org.example.Thing"_L1,
            {{"Join"_L1, {"s"_L1, "s"_L1}, {"s"_L1}, join}},
            {{"Size"_L1, "i"_L1, [] { return 7; }}, {"Extra"_L1, "s"_L1, [this] { return m_extra; }}},
            {{"Changed"_L1, {"i"_L1}}},
        };
    }

    QDBusMessage call(const QString& interface, const QString& method, const QVariantList& arguments = {}) {
        QDBusMessage message = QDBusMessage::createMethodCall(m_owner, path, interface, method);
        message.setArguments(arguments);
        return answer(m_caller, message);
    }

    QVariantMap allProperties(const QString& interface) {
        const QDBusMessage reply = call(propertiesName, u"GetAll"_s, {interface});
        return qdbus_cast<QVariantMap>(reply.arguments().value(0));
    }

    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_caller{QString()};
    QString m_owner;
    QVariant m_extra;
    QVariantList m_received;
    std::unique_ptr<DBusObject> m_object;
};

QTEST_GUILESS_MAIN(DBusObjectTest)
#include "DBusObjectTest.moc"
