#pragma once

#include "Coordination/SnapshotStore.h"

#include <QWidget>

#include <functional>

class QBoxLayout;
class QLayout;

namespace torvane {

class L2List;
class PlainButton;
class TextLine;
class UpdatedLine;

/// What opens at the badge: Ethereum's figures, its chart, the Layer 2 networks, and the actions. It shows what the
/// store publishes, reading it once per turn of the loop, and changes in place only what differs. Its width is fixed,
/// its height follows from what it shows.
class PopoverView final : public QWidget {
    Q_OBJECT

public:
    static constexpr int fixedWidth = 344;

    /// The store and the settings must outlive it.
    PopoverView(SnapshotStore& store, AppSettings& settings, QWidget* parent = nullptr);

    /// The network whose row is under the pointer.
    std::optional<QString> hoveredL2() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void refreshRequested();
    void preferencesRequested();
    void quitRequested();

protected:
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent*) override {}  // Unlike a widget's own, which repaints all of it:
    void focusOutEvent(QFocusEvent*) override {} // nothing shows that the view has the keyboard.
    void keyPressEvent(QKeyEvent* event) override;

private:
    using Binding = std::function<void(const Snapshot&)>;
    using Action = void (PopoverView::*)();

    QLayout* header();
    QLayout* tiers();
    QLayout* costs();
    QLayout* price();
    QLayout* sparkSection();
    QWidget* layer2();
    QWidget* l2Header();
    QLayout* footer();
    QLayout* actions();
    QWidget* actionRow(const QString& label, const QString& trailing, Qt::Key key, Action action);

    /// Calls it with each snapshot that is shown.
    void bind(Binding binding) { m_bindings.append(std::move(binding)); }

    void showSoon();
    void showPublished();
    QList<PlainButton*> buttons() const;
    void focusOn(PlainButton& button, Qt::FocusReason reason);

    SnapshotStore& m_store;
    AppSettings& m_settings;
    QList<Binding> m_bindings;
    L2List* m_l2List = nullptr;
    UpdatedLine* m_updated = nullptr;
    TextLine* m_cadence = nullptr;
    QWidget* m_body;
    TextLine* m_loading;
    bool m_isStale = false;
};

} // namespace torvane
