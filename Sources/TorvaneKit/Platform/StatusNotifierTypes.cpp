#include "Platform/StatusNotifierTypes.h"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QtEndian>

namespace torvane {

namespace {

NotifierPixmap notifierPixmap(const QImage& image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    const qsizetype rowBytes = qsizetype(argb.width()) * 4;
    QByteArray bytes(rowBytes * argb.height(), Qt::Uninitialized);
    for (int row = 0; row < argb.height(); ++row)
        qToBigEndian<quint32>(argb.constScanLine(row), argb.width(), bytes.data() + rowBytes * row);
    return {argb.width(), argb.height(), bytes};
}

} // namespace

QList<NotifierPixmap> notifierPixmaps(const QList<QImage>& images) {
    QList<NotifierPixmap> pixmaps;
    for (const QImage& image : images) {
        if (!image.isNull())
            pixmaps.append(notifierPixmap(image));
    }
    return pixmaps;
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<NotifierPixmap>();
    qDBusRegisterMetaType<QList<NotifierPixmap>>();
    qDBusRegisterMetaType<NotifierToolTip>();
    qDBusRegisterMetaType<MenuItemProperties>();
    qDBusRegisterMetaType<QList<MenuItemProperties>>();
    qDBusRegisterMetaType<MenuItemRemovals>();
    qDBusRegisterMetaType<QList<MenuItemRemovals>>();
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    qDBusRegisterMetaType<QList<int>>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemProperties& item) {
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemProperties& item) {
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemRemovals& item) {
    argument.beginStructure();
    argument << item.id << item.names;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemRemovals& item) {
    argument.beginStructure();
    argument >> item.id >> item.names;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout) {
    argument.beginStructure();
    argument << layout.id << layout.properties << layout.children;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout) {
    argument.beginStructure();
    argument >> layout.id >> layout.properties >> layout.children;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event) {
    argument.beginStructure();
    argument << event.id << event.kind << QDBusVariant(event.data) << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event) {
    QDBusVariant data;
    argument.beginStructure();
    argument >> event.id >> event.kind >> data >> event.timestamp;
    argument.endStructure();
    event.data = data.variant();
    return argument;
}

} // namespace torvane
