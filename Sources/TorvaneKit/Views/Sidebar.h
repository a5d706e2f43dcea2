#pragma once

#include "Views/AccessiblePart.h"

#include <QAbstractButton>

namespace torvane {

/// One section's line in the sidebar: symbol and title. All of it can be clicked.
class SidebarItem final : public QAbstractButton, public AccessiblePart {
    Q_OBJECT

public:
    SidebarItem(const QString& symbol, const QString& title, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::PageTab; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
};

/// The program's name and version above a list of sections, one of which is selected: by a click, the arrow keys, Home
/// and End. For the keyboard the list is one stop.
class Sidebar final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    explicit Sidebar(QWidget* parent = nullptr);

    void add(const QString& symbol, const QString& title);

    QAccessible::Role accessibleRole() const override { return QAccessible::PageTabList; }

    /// Selects a section, which nobody is told.
    void select(int index);

Q_SIGNALS:
    /// The user has chosen another section.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* brand();

    QList<QAbstractButton*> m_items;
};

} // namespace torvane
