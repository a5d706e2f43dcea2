#pragma once

#include "Support/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

namespace torvane {

/// The desktop's portal, with its settings alone, on a connection of its own as another process would be.
class StandInPortal final : public QDBusVirtualObject {
public:
    static const QString& appearanceGroup();

    /// A value as D-Bus has it where any type may stand.
    static QVariant inVariant(const QVariant& value) { return QVariant::fromValue(QDBusVariant(value)); }

    /// As Read answers.
    static QVariant twiceInVariant(uint value) { return inVariant(inVariant(value)); }

    explicit StandInPortal(PrivateBus& bus);
    ~StandInPortal() override;

    /// What Read answers; an error when it is invalid.
    QVariant scheme;
    bool answers = true;
    QList<QVariantList> questions;

    bool appear();
    bool disappear();

    void announce(const QString& group, const QString& key, const QVariant& value);
    void announce(uint value);

    /// Gives the answers that it owes.
    void answerNoted();

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    PrivateBus& m_bus;
    QDBusConnection m_connection;
    QList<QDBusMessage> m_noted;
};

} // namespace torvane
