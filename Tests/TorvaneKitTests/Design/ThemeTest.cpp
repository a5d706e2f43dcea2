#include "Design/Theme.h"

#include "Support/DesktopStyle.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QApplication>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

/// A window that writes down the background it is painted with.
class Window final : public QWidget {
public:
    using QWidget::QWidget;

    QStringList painted;

protected:
    void paintEvent(QPaintEvent*) override { painted.append(QColor(Palette::paper).name()); }
};

const QString lightPaper = u"#f6f5f3"_s;
const QString darkPaper = u"#161614"_s;

QString windowColor() {
    return QApplication::palette().color(QPalette::Window).name();
}

} // namespace

class ThemeTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<TemporaryHome> m_folder;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppSettings> m_settings;
    std::unique_ptr<ApplicationPalette> m_palette;
    std::unique_ptr<ColorScheme> m_desktop;
    std::unique_ptr<Theme> m_theme;

    void startOn(const QColor& desktopWindow, AppTheme theme = AppTheme::auto_);

private Q_SLOTS:
    void init();
    void cleanup();
    void theUsersChoiceGoesBeforeTheDesktops_data();
    void theUsersChoiceGoesBeforeTheDesktops();
    void automaticFollowsTheDesktop();
    void aForcedThemeDoesNotFollowTheDesktop();
    void aChangeBetweenTwoDarkDesktopsIsNone();
    void ourOwnPaletteIsNotTakenForTheDesktops();
    void openWindowsArePaintedAnewAtOnce();
    void whatStaysTheSameIsNotPaintedAnew();
    void theDesktopsPaletteComesBackAtTheEnd();
    void standardWidgetsHaveOurColors_data();
    void standardWidgetsHaveOurColors();
    void standardTextStandsOutInEveryState();
};

void ThemeTest::init() {
    m_folder = std::make_unique<TemporaryHome>();
    m_defaults = std::make_unique<UserDefaults>(m_folder->filePath(u"preferences.json"_s), m_folder->path());
    m_settings = std::make_unique<AppSettings>(*m_defaults);
}

void ThemeTest::startOn(const QColor& desktopWindow, AppTheme theme) {
    QApplication::setStyle(new DesktopStyle(desktopWindow));
    m_settings->theme = theme;
    m_palette = std::make_unique<ApplicationPalette>();
    m_desktop = std::make_unique<ColorScheme>(QDBusConnection(u"none"_s), *m_palette);
    m_theme = std::make_unique<Theme>(*m_settings, *m_desktop, *m_palette);
}

void ThemeTest::cleanup() {
    m_theme.reset();
    m_desktop.reset();
    m_palette.reset();
    m_settings.reset();
    m_defaults.reset();
    setCurrentAppearance(Appearance::light);
}

void ThemeTest::theUsersChoiceGoesBeforeTheDesktops_data() {
    QTest::addColumn<QColor>("desktop");
    QTest::addColumn<AppTheme>("theme");
    QTest::addColumn<Appearance>("expected");
    QTest::newRow("auto on light") << QColor(128, 128, 128) << AppTheme::auto_ << Appearance::light;
    QTest::newRow("auto on dark") << QColor(127, 127, 127) << AppTheme::auto_ << Appearance::dark;
    QTest::newRow("light on dark") << QColor(Qt::black) << AppTheme::light << Appearance::light;
    QTest::newRow("dark on light") << QColor(Qt::white) << AppTheme::dark << Appearance::dark;
}

void ThemeTest::theUsersChoiceGoesBeforeTheDesktops() {
    QFETCH(QColor, desktop);
    QFETCH(AppTheme, theme);
    QFETCH(Appearance, expected);
    startOn(desktop, theme);
    QCOMPARE(currentAppearance(), expected);
    QCOMPARE(windowColor(), expected == Appearance::dark ? darkPaper : lightPaper);
}

void ThemeTest::automaticFollowsTheDesktop() {
    startOn(Qt::white);
    QSignalSpy changes(m_theme.get(), &Theme::appearanceChanged);
    QApplication::setStyle(new DesktopStyle(Qt::black));
    QTRY_COMPARE(currentAppearance(), Appearance::dark);
    QCOMPARE(windowColor(), darkPaper);
    QApplication::setStyle(new DesktopStyle(Qt::white));
    QTRY_COMPARE(currentAppearance(), Appearance::light);
    QCOMPARE(windowColor(), lightPaper);
    QCOMPARE(changes.size(), 2);
}

void ThemeTest::aForcedThemeDoesNotFollowTheDesktop() {
    startOn(Qt::white, AppTheme::light);
    QApplication::setStyle(new DesktopStyle(Qt::black));
    QTRY_VERIFY(m_desktop->isDark());
    QCOMPARE(currentAppearance(), Appearance::light);
    QCOMPARE(windowColor(), lightPaper);
    m_settings->theme = AppTheme::auto_;
    QCOMPARE(currentAppearance(), Appearance::dark);
}

void ThemeTest::aChangeBetweenTwoDarkDesktopsIsNone() {
    startOn(Qt::black);
    QSignalSpy changes(m_theme.get(), &Theme::appearanceChanged);
    QSignalSpy desktopChanges(m_palette.get(), &ApplicationPalette::desktopIsDarkChanged);
    QApplication::setStyle(new DesktopStyle(QColor(40, 40, 40)));
    QApplication::setStyle(new DesktopStyle(Qt::white)); // To be heard after the other.
    QTRY_COMPARE(changes.size(), 1);
    QCOMPARE(desktopChanges.size(), 1);
    QCOMPARE(currentAppearance(), Appearance::light);
}

void ThemeTest::ourOwnPaletteIsNotTakenForTheDesktops() {
    startOn(Qt::white);
    QSignalSpy changes(m_palette.get(), &ApplicationPalette::desktopIsDarkChanged);
    m_settings->theme = AppTheme::dark;
    QCOMPARE(windowColor(), darkPaper);
    QCoreApplication::processEvents();
    QVERIFY(!m_desktop->isDark());
    m_settings->theme = AppTheme::auto_;
    QCOMPARE(windowColor(), lightPaper);
    QCOMPARE(changes.size(), 0);
}

void ThemeTest::openWindowsArePaintedAnewAtOnce() {
    startOn(Qt::white);
    Window first;
    Window second;
    Window child(&second);
    first.show();
    second.show();
    QVERIFY(QTest::qWaitForWindowExposed(&first) && QTest::qWaitForWindowExposed(&second));
    QTRY_VERIFY(!first.painted.isEmpty() && !child.painted.isEmpty());
    m_settings->theme = AppTheme::dark;
    for (const Window* window : {&first, &second, &child})
        QTRY_COMPARE(window->painted.last(), darkPaper);
    m_settings->theme = AppTheme::light;
    for (const Window* window : {&first, &second, &child})
        QTRY_COMPARE(window->painted.last(), lightPaper);
}

void ThemeTest::whatStaysTheSameIsNotPaintedAnew() {
    startOn(Qt::white);
    Window window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(!window.painted.isEmpty());
    QSignalSpy changes(m_theme.get(), &Theme::appearanceChanged);
    const qsizetype before = window.painted.size();
    m_settings->theme = AppTheme::light;
    m_settings->theme = AppTheme::light;
    m_settings->theme = AppTheme::auto_;
    QCOMPARE(changes.size(), 0);
    m_settings->theme = AppTheme::dark; // To be painted after the others.
    QTRY_COMPARE(window.painted.last(), darkPaper);
    QCOMPARE(window.painted.size(), before + 1);
}

void ThemeTest::theDesktopsPaletteComesBackAtTheEnd() {
    startOn(QColor(10, 20, 30));
    m_theme.reset();
    m_desktop.reset();
    m_palette.reset();
    QCOMPARE(windowColor(), u"#0a141e"_s);
}

void ThemeTest::standardWidgetsHaveOurColors_data() {
    QTest::addColumn<QPalette::ColorRole>("role");
    QTest::addColumn<DynamicColor>("color");
    const auto row = [](const char* name, QPalette::ColorRole role, const DynamicColor& color) {
        QTest::newRow(name) << role << color;
    };
    row("background", QPalette::Window, Palette::paper);
    row("text", QPalette::WindowText, Palette::ink);
    row("field", QPalette::Base, Palette::surface);
    row("text in a field", QPalette::Text, Palette::ink);
    row("hint in a field", QPalette::PlaceholderText, Palette::ink3);
    row("tool tip", QPalette::ToolTipBase, Palette::surface);
    row("text in a tool tip", QPalette::ToolTipText, Palette::ink);
    row("button", QPalette::Button, Palette::surface2);
    row("text on a button", QPalette::ButtonText, Palette::ink);
    row("selection", QPalette::Highlight, Palette::accent);
    row("selected text", QPalette::HighlightedText, Palette::accentInk);
}

void ThemeTest::standardWidgetsHaveOurColors() {
    QFETCH(QPalette::ColorRole, role);
    QFETCH(DynamicColor, color);
    startOn(Qt::white);
    const QMenu menu;
    for (const auto& [theme, appearance] :
         {std::pair(AppTheme::dark, Appearance::dark), std::pair(AppTheme::light, Appearance::light)}) {
        m_settings->theme = theme;
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
            QCOMPARE(QApplication::palette().color(group, role), color.in(appearance));
            QTRY_COMPARE(menu.palette().color(group, role), color.in(appearance));
        }
    }
}

void ThemeTest::standardTextStandsOutInEveryState() {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        const QPalette palette = widgetPalette(appearance);
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            for (const auto& [text, ground] :
                 {std::pair(QPalette::WindowText, QPalette::Window), std::pair(QPalette::Text, QPalette::Base),
                  std::pair(QPalette::ButtonText, QPalette::Button),
                  std::pair(QPalette::ToolTipText, QPalette::ToolTipBase),
                  std::pair(QPalette::HighlightedText, QPalette::Highlight)}) {
                const int difference =
                    palette.color(group, text).lightness() - palette.color(group, ground).lightness();
                QVERIFY2(std::abs(difference) >= 36, qPrintable(QString::number(difference)));
            }
        }
    }
}

QTEST_MAIN(ThemeTest)
#include "ThemeTest.moc"
