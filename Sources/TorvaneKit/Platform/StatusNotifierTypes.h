#pragma once

#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QString>
#include <QVariantMap>

namespace torvane {

/// One icon of a status notifier item: (iiay), the bytes being ARGB of 32 bits in network order, not premultiplied.
struct NotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    bool operator==(const NotifierPixmap&) const = default;
};

/// The tooltip of a status notifier item: (sa(iiay)ss).
struct NotifierToolTip {
    QString iconName;
    QList<NotifierPixmap> pixmaps;
    QString title;
    QString text;
};

/// A menu entry with its properties alone: (ia{sv}).
struct MenuItemProperties {
    int id = 0;
    QVariantMap properties;
};

/// The properties of a menu entry that fell back to their defaults: (ias).
struct MenuItemRemovals {
    int id = 0;
    QStringList names;
};

/// A menu entry with its children, each again such a triple: (ia{sv}av).
struct MenuLayout {
    int id = 0;
    QVariantMap properties;
    QVariantList children;
};

/// Something that happened to a menu entry: (isvu).
struct MenuEvent {
    int id = 0;
    QString kind;
    QVariant data;
    uint timestamp = 0;
};

/// The images as pixmaps, in order; null images are left out.
QList<NotifierPixmap> notifierPixmaps(const QList<QImage>& images);

/// Makes the types above known to QtDBus, and their lists. May be called again.
void registerStatusNotifierTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemRemovals& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemRemovals& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event);

} // namespace torvane

Q_DECLARE_METATYPE(torvane::NotifierPixmap)
Q_DECLARE_METATYPE(torvane::NotifierToolTip)
Q_DECLARE_METATYPE(torvane::MenuItemProperties)
Q_DECLARE_METATYPE(torvane::MenuItemRemovals)
Q_DECLARE_METATYPE(torvane::MenuLayout)
Q_DECLARE_METATYPE(torvane::MenuEvent)
