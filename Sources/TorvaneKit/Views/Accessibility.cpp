#include "Views/Accessibility.h"

#include "Views/ChainPicker.h"
#include "Views/Sidebar.h"
#include "Views/Stepper.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>

#include <algorithm>
#include <tuple>

namespace torvane {

namespace {

constexpr char roleProperty[] = "accessibleRole";

class StepperInterface final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit StepperInterface(Stepper* stepper)
        : QAccessibleWidget(stepper, QAccessible::SpinBox) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? stepper().text() : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override { return stepper().value(); }
    QVariant minimumValue() const override { return stepper().limits().least; }
    QVariant maximumValue() const override { return stepper().limits().greatest; }
    QVariant minimumStepSize() const override { return 1; }

    void setCurrentValue(const QVariant& value) override {
        const Stepper::Limits limits = stepper().limits();
        stepper().choose(std::clamp(value.toLongLong(), limits.least, limits.greatest));
    }

private:
    Stepper& stepper() const { return *static_cast<Stepper*>(widget()); }
};

/// Qt's own takes what is selected for the name.
class PickerInterface final : public QAccessibleWidget {
public:
    explicit PickerInterface(ChainPicker* picker)
        : QAccessibleWidget(picker, QAccessible::ComboBox) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? picker().currentText() : QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = state.expandable = true;
        state.expanded = picker().view()->isVisible();
        return state;
    }

    int childCount() const override { return 1; }
    int indexOfChild(const QAccessibleInterface* child) const override { return child->object() == list() ? 0 : -1; }

    QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(list()) : nullptr;
    }

    QStringList actionNames() const override { return {showMenuAction()}; }

    void doAction(const QString& name) override {
        if (name == showMenuAction())
            picker().showPopup();
    }

private:
    ChainPicker& picker() const { return *static_cast<ChainPicker*>(widget()); }
    QObject* list() const { return picker().view(); }
};

class SidebarItemInterface final : public QAccessibleWidget {
public:
    explicit SidebarItemInterface(SidebarItem* item)
        : QAccessibleWidget(item, QAccessible::PageTab, item->text()) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = item().isChecked();
        return state;
    }

    QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString& name) override {
        if (name == pressAction())
            item().click();
    }

private:
    SidebarItem& item() const { return *static_cast<SidebarItem*>(widget()); }
};

QAccessibleInterface* interfaceOf(const QString&, QObject* object) {
    if (auto* stepper = qobject_cast<Stepper*>(object))
        return new StepperInterface(stepper);
    if (auto* item = qobject_cast<SidebarItem*>(object))
        return new SidebarItemInterface(item);
    if (auto* picker = qobject_cast<ChainPicker*>(object))
        return new PickerInterface(picker);
    const QVariant role = object->property(roleProperty);
    if (role.isValid())
        return new QAccessibleWidget(static_cast<QWidget*>(object), role.value<QAccessible::Role>());
    return nullptr;
}

} // namespace

void readAs(QWidget& widget, QAccessible::Role role, const QString& name) {
    readControls();
    widget.setProperty(roleProperty, QVariant::fromValue(role));
    // A label was read, as a label, when it got its text; and what is read is kept.
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&widget)));
    widget.setAccessibleName(name);
}

void readControls() {
    static const bool isInstalled = (QAccessible::installFactory(interfaceOf), true);
    std::ignore = isInstalled;
}

} // namespace torvane
