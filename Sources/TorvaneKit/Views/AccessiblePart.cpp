#include "Views/AccessiblePart.h"

#include <QAbstractButton>
#include <QAccessibleWidget>

namespace torvane {

namespace {

class PartInterface final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    PartInterface(QWidget* widget, const AccessiblePart& part)
        : QAccessibleWidget(widget, part.accessibleRole())
        , m_part(part) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value)
            return m_part.accessibleValue();
        if (kind == QAccessible::Accelerator)
            return m_part.accessibleShortcut().toString(QKeySequence::NativeText);
        return QAccessibleWidget::text(kind);
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return m_part.accessibleRange() ? static_cast<QAccessibleValueInterface*>(this) : nullptr;
        return QAccessibleWidget::interface_cast(type);
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (button() && button()->isCheckable()) {
            state.selectable = true;
            state.selected = button()->isChecked();
        }
        return state;
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (button())
            names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& name) override {
        if (button() && name == pressAction())
            button()->click();
        else
            QAccessibleWidget::doAction(name);
    }

    QStringList keyBindingsForAction(const QString& name) const override {
        if (button() && name == pressAction() && !m_part.accessibleShortcut().isEmpty())
            return {m_part.accessibleShortcut().toString(QKeySequence::NativeText)};
        return QAccessibleWidget::keyBindingsForAction(name);
    }

    QVariant currentValue() const override { return range().latest; }
    QVariant minimumValue() const override { return range().lowest; }
    QVariant maximumValue() const override { return range().highest; }
    QVariant minimumStepSize() const override { return 0; }
    void setCurrentValue(const QVariant&) override {} // A chart shows; it takes nothing.

private:
    QAbstractButton* button() const { return qobject_cast<QAbstractButton*>(widget()); }
    AccessibleRange range() const { return m_part.accessibleRange().value_or(AccessibleRange{0, 0, 0}); }

    const AccessiblePart& m_part;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    const auto* part = dynamic_cast<const AccessiblePart*>(object);
    auto* widget = qobject_cast<QWidget*>(object);
    return part && widget ? new PartInterface(widget, *part) : nullptr;
}

} // namespace

void installAccessibility() {
    QAccessible::installFactory(&makeInterface); // The same one again is not taken.
}

void tellAccessibleName(QWidget& widget, const QString& name) {
    if (name != widget.accessibleName())
        widget.setAccessibleName(name);
}

} // namespace torvane
