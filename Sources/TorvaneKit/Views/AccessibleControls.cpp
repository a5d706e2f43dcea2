#include "Views/AccessibleControls.h"

#include "Views/ChainPicker.h"
#include "Views/Stepper.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>

#include <algorithm>

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

/// Qt's own takes what is selected for the name.
class PickerInterface final : public QAccessibleWidget {
public:
    explicit PickerInterface(ChainPicker* picker)
        : QAccessibleWidget(picker, QAccessible::ComboBox) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? picker().shownTitle() : QAccessibleWidget::text(kind);
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

QAccessibleInterface* interfaceOf(const QString&, QObject* object) {
    if (auto* stepper = qobject_cast<Stepper*>(object))
        return new StepperInterface(stepper);
    if (auto* picker = qobject_cast<ChainPicker*>(object))
        return new PickerInterface(picker);
    return nullptr;
}

} // namespace

void installControlAccessibility() {
    QAccessible::installFactory(interfaceOf); // The same one again is not taken.
}

} // namespace torvane
