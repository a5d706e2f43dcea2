#pragma once

#include "Views/PreferencesView.h"

#include <QPointer>
#include <QWidget>

namespace torvane {

/// The preferences' window, of a fixed size. It is made when it is asked for and discarded when it is closed, by
/// Escape and Ctrl+W too; the program goes on.
class PreferencesWindow final : public QWidget {
    Q_OBJECT

public:
    /// All three must outlive the window.
    PreferencesWindow(SnapshotStore& store, AppSettings& settings, UpdaterState& updater);

    /// Shows the window in front of the others and gives it the keyboard.
    void bringToFront();

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

/// At most one such window.
class Preferences final {
public:
    Preferences(SnapshotStore& store, AppSettings& settings, UpdaterState& updater);
    ~Preferences();

    Preferences(const Preferences&) = delete;
    Preferences& operator=(const Preferences&) = delete;

    /// Opens the window, or brings the open one to the front as it is.
    void open();

    /// The open window; none when it is closed.
    PreferencesWindow* window() const { return m_window; }

private:
    SnapshotStore& m_store;
    AppSettings& m_settings;
    UpdaterState& m_updater;
    QPointer<PreferencesWindow> m_window;
};

} // namespace torvane
