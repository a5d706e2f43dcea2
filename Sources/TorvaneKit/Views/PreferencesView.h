#pragma once

#include "Coordination/SnapshotStore.h"
#include "Coordination/UpdaterState.h"
#include "Model/AppSettings.h"

#include <QWidget>

class QScrollArea;

namespace torvane {

/// The preferences: a sidebar of sections, and the panel of the selected one. There is nothing to apply or to cancel:
/// every control writes at once. It starts at the first section each time it is made.
class PreferencesView final : public QWidget {
    Q_OBJECT

public:
    enum class Section { general, networks, menuBar, alerts, appearance, about };

    /// All three must outlive the view.
    PreferencesView(SnapshotStore& store, AppSettings& settings, UpdaterState& updater, QWidget* parent = nullptr);

    Section section() const { return m_section; }

    /// In device-independent pixels.
    static constexpr QSize contentSize{660, 520};

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void select(Section section);
    QWidget* contentOf(Section section);

    SnapshotStore& m_store;
    AppSettings& m_settings;
    UpdaterState& m_updater;
    Section m_section = Section::general;
    QScrollArea* m_scrollArea;
};

template <>
inline constexpr std::array rawValues<PreferencesView::Section>{
    std::pair{PreferencesView::Section::general, QLatin1StringView("General")},
    std::pair{PreferencesView::Section::networks, QLatin1StringView("Networks")},
    std::pair{PreferencesView::Section::menuBar, QLatin1StringView("Menu Bar")},
    std::pair{PreferencesView::Section::alerts, QLatin1StringView("Alerts")},
    std::pair{PreferencesView::Section::appearance, QLatin1StringView("Appearance")},
    std::pair{PreferencesView::Section::about, QLatin1StringView("About")},
};

} // namespace torvane
