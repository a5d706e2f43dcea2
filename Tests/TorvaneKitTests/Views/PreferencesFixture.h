#pragma once

#include "Support/JSON.h"
#include "Support/SimulatedMarket.h"
#include "Support/TemporaryHome.h"
#include "Support/TestFiles.h"
#include "Support/Worker.h"
#include "Views/PreferencesView.h"
#include "Views/Sidebar.h"
#include "Views/TextLabel.h"
#include "Views/TextLine.h"

#include <QScrollArea>
#include <QTest>

#include <memory>

namespace torvane {

/// A user with preferences of their own, a store, and the view on both once it is opened.
class PreferencesFixture final {
public:
    PreferencesFixture() {
        // Entries of the autostart folder are made below this, too.
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
        start();
    }

    ~PreferencesFixture() {
        view.reset();
        store.reset();
        settings.reset();
        defaults.reset();
    }

    /// As a new start of the program: everything is read anew.
    void start() {
        view.reset();
        store.reset();
        settings.reset();
        defaults.reset();
        worker().waitForDone();
        defaults = std::make_unique<UserDefaults>(preferencesPath(), home.filePath(QStringLiteral("cache")));
        settings = std::make_unique<AppSettings>(*defaults);
        store = std::make_unique<SnapshotStore>(*settings, *defaults);
    }

    QString preferencesPath() const { return home.filePath(QStringLiteral("preferences.json")); }

    static Snapshot snapshot() { return SimulatedMarket::at(QDateTime::fromSecsSinceEpoch(1'790'000'000, Qt::UTC)); }

    /// A snapshot of networks with these names.
    static Snapshot snapshotOf(const QStringList& names) {
        Snapshot result = snapshot();
        const L2Entry model = result.l2.first();
        result.l2.clear();
        for (const QString& name : names) {
            result.l2.append(model);
            result.l2.last().name = name;
        }
        return result;
    }

    /// Opens the view anew, at one of its sections.
    void open(PreferencesView::Section section = PreferencesView::Section::general) {
        view = std::make_unique<PreferencesView>(*store, *settings, updater);
        view->show();
        view->activateWindow();
        if (!QTest::qWaitForWindowActive(view.get(), 30'000))
            qFatal("The window does not appear");
        go(section);
    }

    void go(PreferencesView::Section section) {
        QTest::mouseClick(item(section), Qt::LeftButton);
        QCoreApplication::processEvents();
    }

    SidebarItem* item(PreferencesView::Section section) const {
        return view->findChildren<SidebarItem*>()[static_cast<int>(section)];
    }

    /// The open panel's control of this name; ends the program where there is none.
    template <class Control>
    Control* control(const QString& name) const {
        for (Control* each : view->findChildren<Control*>()) {
            if (each->accessibleName() == name)
                return each;
        }
        qFatal("There is no control \"%s\"", qPrintable(name));
    }

    /// What the open panel says, from top to bottom.
    QStringList texts() const {
        QStringList texts;
        for (const QWidget* part : view->findChild<QScrollArea*>()->findChildren<QWidget*>()) {
            const auto* label = qobject_cast<const TextLabel*>(part);
            const auto* line = qobject_cast<const TextLine*>(part);
            if (label || line)
                texts.append(label ? label->text() : line->text());
        }
        return texts;
    }

    TemporaryHome home;
    std::unique_ptr<UserDefaults> defaults;
    std::unique_ptr<AppSettings> settings;
    std::unique_ptr<SnapshotStore> store;
    UpdaterState updater;
    std::unique_ptr<PreferencesView> view;
};

} // namespace torvane
