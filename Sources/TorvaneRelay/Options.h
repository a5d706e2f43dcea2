#pragma once

#include <QString>
#include <QStringList>

#include <exception>

namespace torvane {

/// What the command line asks for.
struct Options {
    enum class Mode { publish, serve, check, printTable, help, version };

    Mode mode = Mode::publish;
    QString document; ///< path of the document to write, or to check
    QString table;    ///< path of the operator's table; empty: the built-in one
    QString host;
    int port = 0;
    bool isVerbose = false;

    /// Throws UsageError. The first argument is the program's name.
    static Options from(const QStringList& arguments);

    static QString help();
};

/// A command line that makes no sense.
class UsageError final : public std::exception {
public:
    explicit UsageError(const QString& what)
        : m_what(what.toUtf8()) {}

    const char* what() const noexcept override { return m_what.constData(); }

private:
    QByteArray m_what;
};

} // namespace torvane
