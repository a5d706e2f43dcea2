#pragma once

#include "Views/PlainButton.h"
#include "Views/TextRun.h"

namespace torvane {

/// An action: its label, and at the trailing edge the keys that do the same.
class ActionRow final : public PlainButton {
    Q_OBJECT

public:
    /// `trailing` is what is shown, `shortcut` the keys in this desktop's terms.
    ActionRow(const QString& label, const QString& trailing, const QKeySequence& shortcut, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QKeySequence accessibleShortcut() const override { return m_shortcut; }

protected:
    void paintContent(QPainter& painter) override;

private:
    TextRun m_label;
    TextRun m_trailing;
    QKeySequence m_shortcut;
};

} // namespace torvane
