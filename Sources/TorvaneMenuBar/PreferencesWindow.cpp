#include "PreferencesWindow.h"

#include "ProgramIcon.h"

#include <QKeyEvent>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// No button to maximise what has a fixed size.
constexpr Qt::WindowFlags buttons = Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                    Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;

} // namespace

PreferencesWindow::PreferencesWindow(SnapshotStore& store, AppSettings& settings, UpdaterState& updater)
    : QWidget(nullptr, Qt::Window | buttons) {
    setWindowTitle(u"velisk Preferences"_s);
    setWindowIcon(programIcon());
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(new PreferencesView(store, settings, updater));
}

/// Not by shortcuts: they would act while the picker's list is open, whose Escape closes it alone.
void PreferencesWindow::keyPressEvent(QKeyEvent* event) {
    const bool closes = event->matches(QKeySequence::Cancel) || event->keyCombination() == (Qt::CTRL | Qt::Key_W);
    if (closes)
        close();
    else
        QWidget::keyPressEvent(event);
}

void PreferencesWindow::bringToFront() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

Preferences::Preferences(SnapshotStore& store, AppSettings& settings, UpdaterState& updater)
    : m_store(store)
    , m_settings(settings)
    , m_updater(updater) {}

Preferences::~Preferences() {
    delete m_window;
}

void Preferences::open() {
    if (m_window && m_window->isHidden())
        delete m_window; // Closed a moment ago, and to be discarded: what is opened now is another.
    if (!m_window)
        m_window = new PreferencesWindow(m_store, m_settings, m_updater);
    m_window->bringToFront();
}

} // namespace torvane
