#pragma once

#include <QByteArray>
#include <QLoggingCategory>
#include <QStringList>

namespace torvane {

/// The messages of one logging category, collected while this lives. What others log goes its usual way.
class LogLines final {
public:
    explicit LogLines(const QByteArray& category) {
        s_category = category;
        s_lines.clear();
        s_usual = qInstallMessageHandler(&LogLines::take);
    }

    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    ~LogLines() { qInstallMessageHandler(s_usual); }

    const QStringList& lines() const { return s_lines; }

    void clear() { s_lines.clear(); }

private:
    static void take(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        if (context.category != s_category)
            s_usual(type, context, text);
        else
            s_lines.append((type == QtInfoMsg ? QLatin1String("info: ") : QLatin1String("other: ")) + text);
    }

    static inline QByteArray s_category;
    static inline QStringList s_lines;
    static inline QtMessageHandler s_usual = nullptr;
};

} // namespace torvane
