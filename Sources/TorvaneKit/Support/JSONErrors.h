#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <exception>

namespace torvane {

/// A document that cannot be decoded: where in it and why. Codecs of single values throw it with the description alone;
/// the records and lists around them add the path on the way out.
class DecodingError final : public std::exception {
public:
    enum class Cause {
        notJSON,   ///< the bytes are not one document of RFC 8259
        missing,   ///< a required member is not there
        null,      ///< a required value is null
        wrongType, ///< another kind of value than wanted
        corrupted, ///< the right kind, but a value that the type cannot hold
    };

    DecodingError(Cause cause, QByteArray description);

    Cause cause() const { return m_cause; }
    const QByteArray& description() const { return m_description; } ///< what is wrong, in English
    const QByteArray& path() const { return m_path; }               ///< such as "l2[3].costGwei"; empty at the top
    const char* what() const noexcept override { return m_what.constData(); }

    void prepend(QByteArrayView key); ///< the error lies in this member
    void prepend(qsizetype index);    ///< the error lies in this list element

private:
    void prependStep(const QByteArray& step);

    Cause m_cause;
    QByteArray m_description;
    QByteArray m_path;
    QByteArray m_what;
};

/// A value that no JSON document can hold: a number that is not finite, or text that is not Unicode.
class EncodingError final : public std::exception {
public:
    explicit EncodingError(const char* what)
        : m_what(what) {}

    const char* what() const noexcept override { return m_what; }

private:
    const char* m_what;
};

} // namespace torvane
