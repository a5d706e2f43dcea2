#pragma once

#include "Support/PaintCounter.h"
#include "Support/UpdateScenes.h"
#include "UpdateWindows.h"
#include "Views/TextButton.h"

#include <QApplication>
#include <QTest>

#include <memory>

namespace torvane {

/// Windows of an update, made anew for each test, and the answers that their user has given.
class UpdateWindowsFixture : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setQuitOnLastWindowClosed(false); }

    void init() {
        m_answers.clear();
        m_windows = std::make_unique<UpdateWindows>();
    }

    void cleanup() {
        m_windows.reset();
        QCOMPARE(QApplication::topLevelWidgets().size(), 0);
    }

protected:
    static constexpr int limitMs = 30'000;

    std::unique_ptr<UpdateWindows> m_windows;
    QList<Updates::Answer> m_answers;

    void show(const Updates::Scene& scene) {
        m_windows->show(scene, [this](Updates::Answer answer) { m_answers.append(answer); });
        QVERIFY(QTest::qWaitForWindowActive(m_windows->window(), limitMs));
    }

    UpdateWindow* window() const { return m_windows->window(); }

    /// Of what is shown; a page that was left may not be gone yet.
    template <class Part>
    QList<Part*> parts() const {
        QList<Part*> parts;
        for (Part* each : window()->findChildren<Part*>()) {
            if (each->isVisible())
                parts.append(each);
        }
        return parts;
    }

    TextButton* button(const QString& text) const {
        for (TextButton* each : parts<TextButton>()) {
            if (each->text() == text)
                return each;
        }
        return nullptr;
    }

    void press(Qt::Key key) const { QTest::keyClick(window()->windowHandle(), key); }

    bool isGone() const { return !m_windows->window(); }

    /// By then an answer would have come.
    static void settle() { PaintCounter::settle(); }
};

} // namespace torvane
