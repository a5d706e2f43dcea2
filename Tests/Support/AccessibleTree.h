#pragma once

#include <QAccessible>
#include <QMetaEnum>
#include <QObject>

/// What assistive technology is told of an object and of all below it, as text: one line each with role, name, value
/// and states, indented. What only lays others out has no line.
namespace torvane::AccessibleTree {

inline QString lineOf(const QAccessibleInterface& item) {
    QString line = QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(item.role()));
    line += QStringLiteral(" \"") + item.text(QAccessible::Name) + u'"';
    const QString value = item.text(QAccessible::Value);
    if (!value.isEmpty())
        line += QStringLiteral(" = ") + value;
    const QAccessible::State state = item.state();
    line += state.checked ? QStringLiteral(" checked") : QString();
    line += state.selected ? QStringLiteral(" selected") : QString();
    line += state.disabled ? QStringLiteral(" disabled") : QString();
    line += state.focused ? QStringLiteral(" focused") : QString();
    return line;
}

inline QString textOf(QAccessibleInterface* item, int depth = 0) {
    if (!item || item->state().invisible)
        return {};
    const bool isLayout = item->role() == QAccessible::Client && item->text(QAccessible::Name).isEmpty();
    QString text = isLayout ? QString() : QString(depth * 2, u' ') + lineOf(*item) + u'\n';
    for (int i = 0; i < item->childCount(); ++i)
        text += textOf(item->child(i), isLayout ? depth : depth + 1);
    return text;
}

inline QString of(QObject& object) {
    return textOf(QAccessible::queryAccessibleInterface(&object));
}

} // namespace torvane::AccessibleTree
