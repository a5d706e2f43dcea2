#pragma once

#include "Badge/BadgeFeed.h"
#include "PopoverWindow.h"
#include "Views/PopoverView.h"
#include "decode/SnapshotDocuments.h"

#include <QImage>
#include <QTemporaryDir>

namespace torvane {

/// The program with a document of this shape, and the works that are measured. The badge follows the document's last
/// network, which is the one found last. Each work ends the program where it brings nothing, since nothing would be
/// quick.
class Market final {
public:
    explicit Market(const DocumentShape& shape);

    qsizetype bytes() const { return m_document.size(); }

    void decode();
    void merge();

    /// The store lays fresh figures over its document and publishes; the badge compares its look.
    void publish();

    /// Another figure: the badge is drawn anew.
    void paintBadge();

    /// A popover is made, laid out, painted as far as the screen shows it, and discarded.
    void openPopover();

    /// The same as publish(), with a popover open from now on.
    void publishToPopover();

    /// All of an open popover that the screen shows.
    void repaintPopover();

private:
    std::unique_ptr<PopoverWindow> popover();
    void paint(PopoverWindow& window);

    QTemporaryDir m_home;
    QByteArray m_document;
    Snapshot m_snapshot;
    QList<LiveL2Quote> m_quotes;
    UserDefaults m_defaults;
    AppSettings m_settings{m_defaults};
    SnapshotStore m_store;
    BadgeFeed m_feed{m_store, m_settings};
    int m_looks = 0;
    std::unique_ptr<PopoverWindow> m_popover;
    QImage m_screen;
};

} // namespace torvane
