#pragma once

#include <QPlainTextEdit>

namespace torvane {

/// Release notes: plain text to scroll, to select and to copy. Markup is shown as it stands. Lines are laid out as they
/// come into sight, so that long notes open at once.
class NotesView final : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit NotesView(const QString& notes, QWidget* parent = nullptr);

    QSize sizeHint() const override;
};

} // namespace torvane
