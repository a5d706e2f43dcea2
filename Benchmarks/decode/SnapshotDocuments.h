#pragma once

#include <QByteArray>
#include <QList>

#include <string>

namespace torvane {

/// What a generated document is like.
struct DocumentShape {
    std::string name{};
    int networks = 9;
    int points = 288;    ///< of each history
    int digits = 17;     ///< significant ones of the figures; 17 is as many as they need
    bool pretty = false; ///< indented by two blanks instead of compact
    bool extra = false;  ///< with members that no record asks for, about as many bytes again
};

/// A plausible document, the same on every run.
QByteArray snapshotDocument(const DocumentShape& shape);

/// The shapes that are measured: each property varied around what the relay sends.
QList<DocumentShape> measuredShapes();

} // namespace torvane
