#include "Views/ReturnKey.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace torvane {

bool pressByReturn(QAbstractButton& button, const QKeyEvent& key) {
    if (key.key() != Qt::Key_Return && key.key() != Qt::Key_Enter)
        return false;
    if (!key.isAutoRepeat())
        button.click();
    return true;
}

} // namespace torvane
