#include "NotesView.h"

#include "Design/DesignSystem.h"
#include "Views/ThinScrollBar.h"

#include <QTextDocument>

namespace torvane {

namespace {

constexpr QSize usualSize{400, 170};
constexpr int sideMargin = 14;
constexpr int verticalMargin = 10;

} // namespace

NotesView::NotesView(const QString& notes, QWidget* parent)
    : QPlainTextEdit(parent) {
    setFrameShape(QFrame::NoFrame);
    setFont(Fonts::sans(12, QFont::Normal));
    setVerticalScrollBar(new ThinScrollBar);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTabChangesFocus(true);
    setUndoRedoEnabled(false);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setContextMenuPolicy(Qt::NoContextMenu);  // Of the desktop's look, for two entries that have keys.
    viewport()->setAutoFillBackground(false); // The card shows through.
    setViewportMargins(sideMargin, verticalMargin, 0, verticalMargin);
    document()->setDocumentMargin(0);
    setAccessibleName(QStringLiteral("Release notes"));
    setPlainText(notes);
}

QSize NotesView::sizeHint() const {
    return usualSize;
}

} // namespace torvane
