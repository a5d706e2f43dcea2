#pragma once

#include "Badge/BadgeLook.h"
#include "Badge/BadgeMenu.h"

#include <QObject>
#include <QRect>

namespace torvane {

/// What is drawn in one colour, and what it is drawn upon: where nobody says how dark a panel is, a plate of its own
/// keeps the badge readable on each.
struct BadgeInk {
    QColor color;
    std::optional<QColor> plate;

    bool operator==(const BadgeInk&) const = default;
};

/// The badge in one kind of panel. It comes and goes with the panel; `BadgeHost` chooses which.
class BadgeSurface : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Draws what changed and tells the panel; what is shown already costs neither.
    virtual void show(const BadgeLook& look, const BadgeInk& ink) = 0;

Q_SIGNALS:
    /// The panel has it.
    void appeared();

    /// The badge was clicked. `position` is the pointer's by the panel's account, which is not always right.
    void clicked(QPoint position);

    /// The badge was clicked, and lies there, in device-independent pixels of the screen.
    void clickedAt(QRect place);

    void commandChosen(BadgeCommand command);
};

} // namespace torvane
