#pragma once

#include "Model/AppSettings.h"
#include "Views/SegmentedControl.h"

#include <QColor>
#include <QList>
#include <QWidget>

#include <algorithm>

class QAbstractButton;

/// What the panels of the preferences are built of. All of it belongs to the widget that it is put into.
namespace torvane::PanelParts {

/// Widgets below each other, as wide as their parent, without anything between.
QWidget* column(const QList<QWidget*>& parts);

/// One line of a card: the label on the left, the control on the right.
QWidget* row(QWidget* label, QWidget* control);

/// A picture and, beside it, the text that has the rest of the width.
QWidget* beside(QWidget* picture, int gap, QWidget* text);

/// A label of two lines; of one without a subtitle.
QWidget* info(const QString& title, const QString& subtitle = {});

/// A network's mark and its label.
QWidget* netInfo(const QString& name, const QString& subtitle);

/// The line between two rows.
QWidget* sep();

/// The heading above a card, in capitals.
QWidget* label(const QString& text);

/// A status dot and its word.
QWidget* legend(const QColor& color, const QString& text);

/// A short word in an outline, in the place of a control.
QWidget* capsule(const QString& text);

/// A small button with an outline.
QAbstractButton* outlineButton(const QString& text);

/// A card, with the space below it, and a small text there if it has one.
QWidget* card(QWidget* content, const QString& note = {});

/// A switch for one setting. The name is read, not shown.
QAbstractButton* toggle(const QString& name, Setting<bool>& setting);

/// A choice among all values of an enumeration, by their raw values and in their order, for one setting. The name is
/// read, not shown.
template <RawEnum E>
SegmentedControl* choice(const QString& name, Setting<E>& setting) {
    static constexpr auto values = allCases<E>();
    const auto indexOf = [](E value) { return static_cast<int>(std::ranges::find(values, value) - values.begin()); };
    QStringList labels;
    for (const E value : values)
        labels.append(QString(rawValue(value)));
    auto* control = new SegmentedControl(name, labels);
    control->select(indexOf(setting.value()));
    setting.observe(control, [control, indexOf](E value) { control->select(indexOf(value)); });
    QObject::connect(control, &SegmentedControl::chosen, control,
                     [&setting](int index) { setting = values[static_cast<std::size_t>(index)]; });
    return control;
}

} // namespace torvane::PanelParts
