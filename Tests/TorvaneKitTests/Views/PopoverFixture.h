#pragma once

#include "Design/DesignSystem.h"
#include "Support/PaintCounter.h"
#include "Support/PopoverReading.h"
#include "Support/PopoverScene.h"
#include "Views/PopoverView.h"

#include <QTest>

#include <memory>

namespace torvane {

/// What the tests of an open popover have in common: a new scene, and the popover open, for each function.
class PopoverFixture : public QObject {
    Q_OBJECT

protected:
    void open() {
        m_view = std::make_unique<PopoverView>(m_scene->store, m_scene->settings);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
        PaintCounter::settle();
    }

    std::unique_ptr<PopoverScene> m_scene;
    std::unique_ptr<PopoverView> m_view;

private Q_SLOTS:
    void init() {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        m_scene = std::make_unique<PopoverScene>();
        open();
    }

    void cleanup() {
        m_view.reset();
        m_scene.reset();
        setCurrentAppearance(Appearance::light);
    }
};

} // namespace torvane
