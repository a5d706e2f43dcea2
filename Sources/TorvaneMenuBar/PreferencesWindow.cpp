#include "PreferencesWindow.h"

#include <QShortcut>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace torvane {

PreferencesWindow::PreferencesWindow(SnapshotStore& store, AppSettings& settings, UpdaterState& updater) {
    setWindowTitle(u"velisk Preferences"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(new PreferencesView(store, settings, updater));
    for (const QKeySequence& keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)})
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
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
    if (!m_window)
        m_window = new PreferencesWindow(m_store, m_settings, m_updater);
    m_window->bringToFront();
}

} // namespace torvane
