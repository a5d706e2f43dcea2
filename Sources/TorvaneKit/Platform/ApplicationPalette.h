#pragma once

#include <QObject>
#include <QPalette>

#include <optional>

namespace torvane {

/// The palette of the program's standard widgets, told apart from the desktop's own, which it covers. Only this object
/// may set the application's palette: what it did not set is taken for the desktop's.
class ApplicationPalette final : public QObject {
    Q_OBJECT

public:
    /// Needs a QGuiApplication, whose palette is the desktop's still. One object at a time.
    explicit ApplicationPalette(QObject* parent = nullptr);
    ~ApplicationPalette() override;

    /// Gives all widgets this palette; those that show another one are repainted.
    void set(const QPalette& palette);

    /// Whether the desktop's own windows are dark, judging by their background.
    bool desktopIsDark() const { return m_desktopIsDark; }

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void desktopIsDarkChanged(bool isDark);

private:
    void readSoon();
    void read();
    void apply(const QPalette& palette);

    std::optional<QPalette> m_own;
    bool m_desktopIsDark;
    bool m_isApplying = false;
    bool m_willRead = false;
};

} // namespace torvane
