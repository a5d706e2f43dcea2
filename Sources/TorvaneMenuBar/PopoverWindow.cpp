#include "PopoverWindow.h"

#include "Design/VisualEffect.h"
#include "PopoverPlacement.h"
#include "Views/ThinScrollBar.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// A popup of Qt's keeps all clicks to itself, the first one outside too. But a compositor of the wlroots family puts a
/// window that it manages in the middle of the screen, wherever it wants to be: there only a popup lies at the badge.
Qt::WindowFlags kindOfWindow(const X11::Desktop& desktop) {
    const bool isMovedAway = desktop.windowManagerName == "wlroots wm"_L1;
    return (isMovedAway ? Qt::Popup : Qt::Tool | Qt::WindowStaysOnTopHint) | Qt::FramelessWindowHint;
}

void giveWay(QScrollArea& scroller) {
    scroller.setFrameShape(QFrame::NoFrame);
    scroller.setFocusPolicy(Qt::NoFocus); // Keys are the content's; it scrolls with those that are left over.
    scroller.viewport()->setAutoFillBackground(false);
    scroller.widget()->setAutoFillBackground(false);
}

} // namespace

PopoverWindow::PopoverWindow(std::unique_ptr<QWidget> content, const QRect& badge, const QRect& area,
                             const X11::Desktop& desktop)
    : QWidget(nullptr, kindOfWindow(desktop))
    , m_badge(badge)
    , m_area(area)
    , m_scroller(new QScrollArea) {
    setWindowTitle(u"velisk"_s);
    setAttribute(Qt::WA_NoSystemBackground);
    content->installEventFilter(this);
    m_scroller->viewport()->installEventFilter(this);
    m_scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroller->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroller->setWidget(content.release());
    giveWay(*m_scroller);

    auto* backdrop = new VisualEffect(Material::popover, BlendingMode::behindWindow, this, desktop.compositing);
    for (const auto& [outer, inner] : {std::pair<QWidget*, QWidget*>(this, backdrop), {backdrop, m_scroller}}) {
        auto* layout = new QVBoxLayout(outer);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSizeConstraint(QLayout::SetNoConstraint);
        layout->addWidget(inner);
    }
    fit();
}

void PopoverWindow::open() {
    X11::skipTaskbarAndPager(winId());
    show();
    // Qt has every widget painted once more when it was shown; said before the first frame, it means that one.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateLater);
    activateWindow();
    m_scroller->widget()->setFocus();
}

void PopoverWindow::bringToFront() {
    raise();
    activateWindow();
}

/// A content with a layout is asked to lay itself out anew; of one without, it is the parent that hears.
bool PopoverWindow::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::LayoutRequest)
        fit();
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Move)
        lookBelowPointerSoon();
    return false;
}

bool PopoverWindow::event(QEvent* event) {
    const bool result = QWidget::event(event);
    const bool isLeft = event->type() == QEvent::WindowDeactivate || event->type() == QEvent::Close;
    if (isLeft)
        Q_EMIT ended(QApplication::activeWindow() ? PopoverEnd::ownWindow : PopoverEnd::foreignWindow);
    return result;
}

/// What state the window manager gives the window is all the same to it. But Qt would ask the server for it at each
/// change, and wait for the answer, twice before the first frame.
bool PopoverWindow::nativeEvent(const QByteArray& eventType, void* message, qintptr*) {
    return eventType == "xcb_generic_event_t" && X11::tellsOfWindowState(message);
}

void PopoverWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        Q_EMIT ended(PopoverEnd::escape);
    else
        QWidget::keyPressEvent(event);
}

QSize PopoverWindow::contentSize() const {
    const QWidget& content = *m_scroller->widget();
    const QSize hint = content.sizeHint().expandedTo(content.minimumSize()).boundedTo(content.maximumSize());
    const int height = content.hasHeightForWidth() ? content.heightForWidth(hint.width()) : hint.height();
    return {hint.width(), height};
}

void PopoverWindow::fit() {
    const QSize wanted = contentSize();
    m_scroller->widget()->resize(wanted);
    const QRect place = PopoverPlacement::place(wanted, m_badge, m_area);
    setGeometry(place);
    const bool scrolls = wanted.height() > place.height();
    if (scrolls && !m_bar)
        addBar();
    if (!m_bar)
        return;
    const int barWidth = m_bar->sizeHint().width();
    m_bar->setGeometry(place.width() - barWidth, 0, barWidth, place.height());
    m_bar->setVisible(scrolls);
}

/// Over the content's margin, where the scroll area itself would make room beside it: the width is the same for any
/// number of networks.
void PopoverWindow::addBar() {
    m_bar = new ThinScrollBar;
    m_scroller->setVerticalScrollBar(m_bar);
    m_bar->setParent(m_scroller);
}

/// Rows move under a pointer that rests: by the wheel, with the keyboard's focus, or because one above them came. Qt
/// looks for what lies below the pointer only when that moves. All moves of one turn of the loop are one.
void PopoverWindow::lookBelowPointerSoon() {
    if (m_isLookDue || !underMouse())
        return;
    m_isLookDue = true;
    QMetaObject::invokeMethod(this, &PopoverWindow::lookBelowPointer, Qt::QueuedConnection);
}

void PopoverWindow::lookBelowPointer() {
    m_isLookDue = false;
    if (!isVisible())
        return;
    const QPoint pointer = QCursor::pos();
    if (!geometry().contains(pointer))
        return;
    QMouseEvent rest(QEvent::MouseMove, mapFromGlobal(pointer), pointer, Qt::NoButton, QGuiApplication::mouseButtons(),
                     QGuiApplication::keyboardModifiers());
    QCoreApplication::sendEvent(windowHandle(), &rest);
}

} // namespace torvane
