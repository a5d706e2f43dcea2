#pragma once

#include <QAbstractButton>

#include <functional>

namespace torvane {

/// A square button with a system symbol.
class StepButton final : public QAbstractButton {
    Q_OBJECT

public:
    /// `symbol` is "minus" or "plus"; the name is read, not shown. It repeats while it is held.
    StepButton(const QString& symbol, const QString& name, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
};

/// A whole number between two step buttons: they, the arrow keys, plus and minus change it by one, Page Up and Page
/// Down by ten, Home and End take it to its limits. What is shown may lie outside the limits; what is chosen does not,
/// unless a step only comes nearer to them. It is read as a spin box.
class Stepper final : public QWidget {
    Q_OBJECT

public:
    struct Limits {
        qint64 least;
        qint64 greatest;
    };

    /// `text` gives a value's text. The name is read, not shown.
    Stepper(const QString& name, Limits limits, std::function<QString(qint64)> text, QWidget* parent = nullptr);

    /// Shows another value, which nobody is told.
    void setValue(qint64 value);

    qint64 value() const { return m_value; }
    Limits limits() const { return m_limits; }
    QString text() const { return m_text(m_value); }

    /// As a user does: tells those who listen, who show the value if they take it.
    void choose(qint64 value);

    /// One step down, never below the least; one up, never above the greatest. Defined for every number.
    static qint64 lowered(qint64 value, Limits limits, qint64 by = 1);
    static qint64 raised(qint64 value, Limits limits, qint64 by = 1);

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user has chosen a value, another one or the same.
    void chosen(qint64 value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    int textWidth() const;

    Limits m_limits;
    std::function<QString(qint64)> m_text;
    qint64 m_value;
};

} // namespace torvane
