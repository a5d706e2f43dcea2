#pragma once

#include "Composition.h"
#include "Publication.h"
#include "RelayTable.h"
#include "Support/Async.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace torvane {

/// Publishes one document, run by run.
class Relay final {
public:
    /// Takes one line for a person.
    using Say = std::function<void(const QString& line)>;

    Relay(RelayTable table, QString document, Say say);

    /// One run: reads the nodes and replaces the document, or leaves it as it is. The document's bytes, or none where
    /// nothing was written; why, it has said.
    Task<std::optional<QByteArray>> run();

private:
    Task<QByteArray> publish();
    QByteArray compose(const Reading& reading, const EarlierDocument& earlier);

    RelayTable m_table;
    QString m_document;
    Say m_say;
};

} // namespace torvane
