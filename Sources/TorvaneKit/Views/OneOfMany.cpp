#include "Views/OneOfMany.h"

#include <QAbstractButton>
#include <QKeyEvent>

#include <algorithm>

namespace torvane {

std::optional<int> OneOfMany::afterKey(const QKeyEvent& key, int selected, int count, Qt::LayoutDirection direction) {
    if (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return std::nullopt; // Another's shortcut.
    const int onward = direction == Qt::RightToLeft ? -1 : 1;
    const auto within = [count](int index) { return std::clamp(index, 0, count - 1); };
    switch (key.key()) {
    case Qt::Key_Left:
        return within(selected - onward);
    case Qt::Key_Right:
        return within(selected + onward);
    case Qt::Key_Up:
        return within(selected - 1);
    case Qt::Key_Down:
        return within(selected + 1);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return count - 1;
    default:
        return std::nullopt;
    }
}

int OneOfMany::checked(const QList<QAbstractButton*>& buttons) {
    const auto isChecked = [](const QAbstractButton* button) { return button->isChecked(); };
    const auto found = std::find_if(buttons.begin(), buttons.end(), isChecked);
    return found == buttons.end() ? -1 : static_cast<int>(found - buttons.begin());
}

void OneOfMany::keepOneTabStop(const QList<QAbstractButton*>& buttons) {
    const bool isAny = checked(buttons) < 0;
    for (QAbstractButton* button : buttons)
        button->setFocusPolicy(isAny || button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
}

} // namespace torvane
