#pragma once

#include "Views/L2Row.h"
#include "Views/TextLine.h"

#include <QWidget>

/// What can be read off a popover.
namespace torvane::PopoverReading {

/// What can be seen of a kind, from top to bottom.
template <class Part>
QList<Part*> visible(const QWidget& view) {
    QList<Part*> parts;
    for (Part* part : view.findChildren<Part*>()) {
        if (part->isVisibleTo(&view))
            parts.append(part);
    }
    return parts;
}

template <class Part>
QStringList readings(const QWidget& view) {
    QStringList texts;
    for (const Part* part : visible<Part>(view))
        texts.append(part->accessibleName());
    return texts;
}

/// All that is shown as plain lines of text.
inline QStringList lines(const QWidget& view) {
    QStringList texts;
    for (const TextLine* line : visible<TextLine>(view))
        texts.append(line->text());
    return texts;
}

inline QStringList rowNames(const QWidget& view) {
    QStringList names;
    for (const L2Row* row : visible<L2Row>(view))
        names.append(row->name());
    return names;
}

} // namespace torvane::PopoverReading
