#include "Options.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QUrl>

namespace torvane {

namespace {

/// The parser with all options; what it says as help is the documentation of the command line.
class Parser final {
public:
    Parser() {
        m_parser.setApplicationDescription(QStringLiteral(
            "Publishes snapshot.json, the document that velisk shows, with figures of public nodes.\n"
            "With --out, one run: the document is replaced, or left as it is and the status is 1.\n"
            "With --serve, runs every five minutes and serves the document over HTTPS until it is ended."));
        m_parser.addOptions({m_out, m_serve, m_check, m_table, m_printTable, m_verbose, m_help, m_version});
    }

    Options parse(const QStringList& arguments) {
        if (!m_parser.parse(arguments))
            throw UsageError(m_parser.errorText());
        if (!m_parser.positionalArguments().isEmpty())
            throw UsageError(m_parser.positionalArguments().first() + QStringLiteral(" means nothing here"));
        Options options;
        options.mode = mode();
        options.document = absolute(m_parser.value(options.mode == Options::Mode::check ? m_check : m_out));
        options.table = m_parser.value(m_table);
        options.isVerbose = m_parser.isSet(m_verbose);
        if (options.mode == Options::Mode::serve)
            readAddress(options);
        return options;
    }

    QString help() const { return m_parser.helpText(); }

private:
    Options::Mode mode() const {
        using enum Options::Mode;
        if (m_parser.isSet(m_help))
            return Options::Mode::help;
        if (m_parser.isSet(m_version))
            return version;
        const bool checks = m_parser.isSet(m_check);
        const bool prints = m_parser.isSet(m_printTable);
        const bool writes = m_parser.isSet(m_out) || m_parser.isSet(m_serve);
        if (int{checks} + int{prints} + int{writes} != 1)
            throw UsageError(QStringLiteral("either --out or --serve, --check, or --print-table"));
        if (checks)
            return check;
        if (prints)
            return printTable;
        return m_parser.isSet(m_serve) ? serve : publish;
    }

    static QString absolute(const QString& path) { return path.isEmpty() ? path : QFileInfo(path).absoluteFilePath(); }

    void readAddress(Options& options) const {
        const QString text = m_parser.value(m_serve);
        const QUrl url(QStringLiteral("https://") + text, QUrl::StrictMode);
        const bool isAddress = url.isValid() && !url.host().isEmpty() && url.port() > 0 && url.authority() == text;
        if (!isAddress || !url.userInfo().isEmpty())
            throw UsageError(text + QStringLiteral(" is no HOST:PORT"));
        options.host = url.host();
        options.port = url.port();
    }

    QCommandLineParser m_parser;
    QCommandLineOption m_out{QStringLiteral("out"), QStringLiteral("Write the document to <file>."),
                             QStringLiteral("file")};
    QCommandLineOption m_serve{
        QStringLiteral("serve"),
        QStringLiteral("Serve it at <host:port>, such as localhost:8643. Certificate and key are "
                       "made at the first start."),
        QStringLiteral("host:port")};
    QCommandLineOption m_check{QStringLiteral("check"),
                               QStringLiteral("Read the document in <file> as velisk does, and say what is wrong."),
                               QStringLiteral("file")};
    QCommandLineOption m_table{QStringLiteral("table"),
                               QStringLiteral("Ask what the table in <file> says instead of the built-in one."),
                               QStringLiteral("file")};
    QCommandLineOption m_printTable{QStringLiteral("print-table"), QStringLiteral("Print the built-in table.")};
    QCommandLineOption m_verbose{QStringLiteral("verbose"), QStringLiteral("A line for each request.")};
    QCommandLineOption m_help{{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")};
    QCommandLineOption m_version{QStringLiteral("version"), QStringLiteral("Show the version.")};
};

} // namespace

Options Options::from(const QStringList& arguments) {
    return Parser().parse(arguments);
}

QString Options::help() {
    return Parser().help();
}

} // namespace torvane
