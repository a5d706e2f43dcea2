#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QVariant>

#include <functional>
#include <optional>

namespace torvane {

/// The D-Bus types of a list of arguments, one complete type each: {"i", "as"}.
using DBusTypes = QList<QLatin1StringView>;

/// The arguments of a reply, or nothing when the call names something that does not exist.
using DBusAnswer = std::optional<QVariantList>;

template <class... Values>
DBusAnswer dbusAnswer(const Values&... values) {
    return QVariantList{QVariant::fromValue(values)...};
}

/// A method of an interface. Its handler is called with arguments of exactly these types.
struct DBusMethod {
    QLatin1StringView name;
    DBusTypes takes;
    DBusTypes gives;
    std::function<DBusAnswer(const QVariantList&)> call;
};

/// A read-only property. While its value is an invalid variant, the object has no such property.
struct DBusProperty {
    QLatin1StringView name;
    QLatin1StringView type;
    std::function<QVariant()> read;
};

/// A signal of an interface.
struct DBusSignal {
    QLatin1StringView name;
    DBusTypes carries;
};

struct DBusInterface {
    QLatin1StringView name;
    QList<DBusMethod> methods;
    QList<DBusProperty> properties;
    QList<DBusSignal> signalsSent;
};

/// An object with one interface of its own. Calls are checked, answered and introspected from one table, so that what
/// introspection shows is what is there: QtDBus's own export cannot leave out a property at run time.
class DBusObject final : public QDBusVirtualObject {
public:
    DBusObject(QDBusConnection bus, QString path, DBusInterface interface);
    ~DBusObject() override;

    /// Makes the object reachable. False when another object of this connection has the path.
    bool publish();

    /// Sends a signal of the interface to whoever listens.
    void send(QLatin1StringView signal, const QVariantList& arguments = {});

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QDBusMessage answer(const QDBusMessage& call) const;
    QDBusMessage answerProperties(const QDBusMessage& call) const;
    QDBusMessage propertyValue(const QDBusMessage& call) const;
    QDBusMessage allProperties(const QDBusMessage& call) const;
    QDBusMessage refuseToSet(const QDBusMessage& call) const;
    const DBusProperty* property(QStringView name) const;

    QDBusConnection m_bus;
    const QString m_path;
    const DBusInterface m_interface;
    bool m_published = false;
};

} // namespace torvane
