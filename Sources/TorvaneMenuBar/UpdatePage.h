#pragma once

#include "TorvaneUpdates/Windows.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace torvane {

/// A button of a page.
struct UpdateChoice final {
    QString text;
    Updates::Answer answer;

    bool operator==(const UpdateChoice&) const = default;
};

/// How far a page's task has come.
struct UpdateProgress final {
    double fraction = 0; // of 1
    QString text;

    bool operator==(const UpdateProgress&) const = default;
};

/// What a window of updates says of one scene. All texts are plain.
struct UpdatePage final {
    QString headline;
    QString text;
    QString warning{}; // set off from the text
    QString notes{};
    QUrl notesLink{}; // a web page, or empty
    std::optional<UpdateProgress> progress{};
    QList<UpdateChoice> choices{};            // the boldest first
    std::optional<Updates::Answer> mildest{}; // what Escape does, and the desktop's means of closing a window

    /// What Return does: nothing where all that could be done is to break off.
    std::optional<UpdateChoice> byDefault() const;

    bool operator==(const UpdatePage&) const = default;
};

/// The words for a scene.
UpdatePage pageOf(const Updates::Scene& scene);

} // namespace torvane
