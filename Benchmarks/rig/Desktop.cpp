#include "rig/Desktop.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

// Without services: nobody is started because somebody is asked.
constexpr auto busConfiguration = R"(<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

fs::path newHome() {
    std::string name = (fs::temp_directory_path() / "bench-XXXXXX").string();
    if (!mkdtemp(name.data()))
        giveUp("There is no room for a home");
    return name;
}

/// Of the surroundings of the benchmark nothing but where programs are.
Program::Words ownEnvironment() {
    Program::Words kept;
    for (const char* name : {"PATH", "LANG", "LD_LIBRARY_PATH", "TMPDIR"}) {
        if (const char* value = std::getenv(name))
            kept.push_back(std::string(name) + '=' + value);
    }
    return kept;
}

Program::Words environmentOf(const fs::path& home, const std::string& bus, const std::string& display) {
    Program::Words all = ownEnvironment();
    const auto set = [&all](const char* name, const std::string& value) {
        all.push_back(std::string(name) + '=' + value);
    };
    set("DBUS_SESSION_BUS_ADDRESS", bus);
    set("DISPLAY", display);
    set("QT_QPA_PLATFORM", "xcb");
    set("QT_LOGGING_RULES", "org.velisk.Torvane.net.info=false");
    set("NO_AT_BRIDGE", "1");
    set("HOME", home.string());
    set("XDG_CONFIG_HOME", (home / "config").string());
    set("XDG_CACHE_HOME", (home / "cache").string());
    set("XDG_DATA_HOME", (home / "data").string());
    set("XDG_RUNTIME_DIR", home.string());
    return all;
}

std::string firstLine(Program& program, const char* whose) {
    const std::optional<std::string> line = program.line();
    if (!line)
        giveUp(std::string(whose) + " does not start");
    return *line;
}

} // namespace

Desktop::Desktop()
    : m_home(newHome()) {
    const Program::Words own = ownEnvironment();
    // An X server that resets itself when its last client goes would make the next one wait.
    m_screen = std::make_unique<Program>(
        Program::Words{"Xvfb", "-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"}, own);
    m_display = ':' + firstLine(*m_screen, "The X server (package xvfb)");
    std::ofstream(m_home / "bus.conf") << busConfiguration;
    const std::string configuration = "--config-file=" + (m_home / "bus.conf").string();
    m_bus = std::make_unique<Program>(Program::Words{"dbus-daemon", "--nofork", "--print-address", configuration}, own);
    m_environment = environmentOf(m_home, firstLine(*m_bus, "The bus (package dbus-daemon)"), m_display);
    fs::create_directories(config());
    fs::create_directories(cache());
}

Desktop::~Desktop() {
    depopulate();
    m_bus.reset();
    m_screen.reset();
    fs::remove_all(m_home);
}

void Desktop::populate() {
    m_servers = std::make_unique<Program>(Program::Words{VELISK_STAND_IN}, ownEnvironment());
    if (m_servers->line() != "ready")
        giveUp("The stand-in relay does not start: does another one run?");
    m_panel = std::make_unique<Program>(Program::Words{STAND_IN_PANEL}, m_environment);
    if (m_panel->line() != "ready")
        giveUp("The panel does not start");
}

void Desktop::depopulate() {
    m_panel.reset();
    m_servers.reset();
}

Desktop::PanelNews Desktop::nextNews() {
    const std::optional<std::string> line = m_panel->line();
    if (!line)
        giveUp("A program does not show what it should");
    PanelNews news;
    std::istringstream(*line) >> news.what >> news.time >> news.who;
    return news;
}

Nanoseconds Desktop::click() {
    m_panel->tell("click");
    PanelNews news = nextNews();
    while (news.what != "click")
        news = nextNews();
    return news.time;
}
