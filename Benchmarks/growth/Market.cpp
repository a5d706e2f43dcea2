#include "growth/Market.h"

#include "Badge/BadgeDrawing.h"
#include "Chain/SnapshotMerge.h"
#include "Design/DesignSystem.h"
#include "Support/JSON.h"

#include <QCoreApplication>
#include <QFile>
#include <QScrollArea>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr QRect badge(1000, 0, 24, 24);
constexpr QRect workArea(0, 24, 1280, 1000);

void require(bool isRight, const char* what) {
    if (isRight)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(2);
}

QString preferencesPath(const QTemporaryDir& home) {
    return home.filePath(u"preferences.json"_s);
}

/// A start finds the document in the cache.
const QByteArray& cached(const QByteArray& document, const QTemporaryDir& home) {
    QFile file(home.filePath(u"cachedSnapshot"_s));
    require(file.open(QIODevice::WriteOnly) && file.write(document) == document.size() && file.flush(),
            "The cache cannot be written");
    return document;
}

} // namespace

Market::Market(const DocumentShape& shape)
    : m_document(cached(snapshotDocument(shape), m_home))
    , m_snapshot(JSON::decode<Snapshot>(m_document))
    , m_quotes({{m_snapshot.l2.last().name, 7}})
    , m_defaults(preferencesPath(m_home), m_home.path())
    , m_store(m_settings, m_defaults) {
    require(m_store.snapshot.value().has_value(), "The store did not find its document");
    m_settings.badgeChain = BadgeChain::l2(m_snapshot.l2.last().name);
    QObject::connect(&m_feed, &BadgeFeed::lookChanged, &m_feed, [this] { ++m_looks; });
    QCoreApplication::sendPostedEvents();
}

void Market::decode() {
    require(JSON::decode<Snapshot>(m_document).l2.size() == m_snapshot.l2.size(), "A document was not decoded");
}

void Market::merge() {
    const Snapshot merged = mergeSnapshot(m_snapshot, LiveGasQuote{1, 2, 3, 4, 5}, m_quotes);
    require(merged.l2.last().costGwei == 7, "A merge brought nothing");
}

void Market::publish() {
    const int before = m_looks;
    m_store.rescheduleTimers(); // Which publishes what the timers are to keep fresh.
    QCoreApplication::sendPostedEvents();
    require(m_looks == before + 1, "The badge did not hear of a publish");
}

void Market::paintBadge() {
    MenuBarRasterCache::badgeIcons().clear();
    const BadgeInk ink{Palette::ink.in(Appearance::dark), {}};
    require(wideBadge(m_feed.look().picture, ink, 1).width() > badgePoints, "A badge has no figure");
}

std::unique_ptr<PopoverWindow> Market::popover() {
    auto window = std::make_unique<PopoverWindow>(std::make_unique<PopoverView>(m_store, m_settings), badge, workArea,
                                                  X11::Desktop());
    window->setAttribute(Qt::WA_DontShowOnScreen);
    window->show();
    QCoreApplication::sendPostedEvents();
    return window;
}

void Market::paint(PopoverWindow& window) {
    if (m_screen.size() != window.size())
        m_screen = QImage(window.size(), QImage::Format_ARGB32_Premultiplied);
    m_screen.fill(Qt::white);
    window.render(&m_screen);
}

void Market::openPopover() {
    m_popover.reset();
    const std::unique_ptr<PopoverWindow> window = popover();
    paint(*window);
    const int rows = window->findChild<QScrollArea*>()->widget()->height();
    require(rows > 34 * m_snapshot.l2.size(), "A popover has not all networks");
}

void Market::publishToPopover() {
    if (!m_popover)
        m_popover = popover();
    publish();
}

void Market::repaintPopover() {
    if (!m_popover)
        m_popover = popover();
    paint(*m_popover);
}

} // namespace torvane
