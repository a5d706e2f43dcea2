#include "Views/Accessibility.h"

#include "Views/Sidebar.h"
#include "Views/Stepper.h"

#include <QAccessibleWidget>

namespace torvane {

namespace {

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
    if (auto* sidebar = qobject_cast<Sidebar*>(object))
        return new QAccessibleWidget(sidebar, QAccessible::PageTabList);
    return nullptr;
}

} // namespace

void readAsRoles() {
    static const bool isInstalled = (QAccessible::installFactory(interfaceOf), true);
    std::ignore = isInstalled;
}

} // namespace torvane
