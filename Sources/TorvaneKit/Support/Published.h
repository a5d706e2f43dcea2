#pragma once

#include <QObject>

#include <utility>

namespace torvane {

/// An object whose published properties announce each change before it takes effect.
class ObservableObject : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    /// Some published property is about to change.
    void objectWillChange();
};

/// Carries one property's announcements; Qt's connections bring their rules on lifetime and re-entrancy.
class PublishedSignal final : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void willChange(const void* newValue);
};

/// A property of an observable object. Assigning it tells the owner's observers, then the property's own, then
/// changes the value: observers are told the new value while the old one can still be read. Equal values are announced
/// too: it is the receivers that compare.
template <class T>
class Published {
public:
    Published(ObservableObject* owner, T initial)
        : m_owner(owner)
        , m_value(std::move(initial)) {}

    Published(const Published&) = delete;

    const T& value() const { return m_value; }

    operator const T&() const { return m_value; }

    const T* operator->() const { return &m_value; }

    Published& operator=(T newValue) {
        Q_EMIT m_owner->objectWillChange();
        Q_EMIT m_signal.willChange(&newValue);
        m_value = std::move(newValue);
        return *this;
    }

    /// Calls `observer(newValue)` before each change, for as long as `context` lives.
    template <class Observer>
    QMetaObject::Connection observe(const QObject* context, Observer observer) const {
        return QObject::connect(&m_signal, &PublishedSignal::willChange, context,
                                [observer = std::move(observer)](const void* newValue) mutable {
                                    observer(*static_cast<const T*>(newValue));
                                });
    }

private:
    ObservableObject* m_owner;
    T m_value;
    PublishedSignal m_signal;
};

} // namespace torvane
