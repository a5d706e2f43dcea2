#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <variant>

namespace torvane::Updates {

/// What people are told of an update. All texts are plain: they come from the feed.
struct Offer final {
    QString version;         // as it is shown
    QString currentVersion;  // of the running program
    QString notes{};         // empty where the feed has none
    QUrl notesLink{};        // http or https, or empty; opened on a click alone
    qint64 length = 0;       // bytes to download
    bool isCritical = false; // cannot be skipped
    QString obstacle{};      // why this copy cannot be replaced, a sentence; empty where it can
};

// One of these is shown at a time; each is all that its window shows.
struct Checking final {};
struct Found final {
    Offer offer;
};
struct UpToDate final {
    QString currentVersion;
};
struct Downloading final {
    Offer offer;
    qint64 received = 0;
};
struct Verifying final {
    Offer offer;
};
struct ReadyToInstall final {
    Offer offer;
};
struct Installing final {
    Offer offer;
};
struct Failed final {
    QString cause; // a sentence
};

using Scene = std::variant<Checking, Found, UpToDate, Downloading, Verifying, ReadyToInstall, Installing, Failed>;

enum class Answer {
    install, // of Found: download it; of ReadyToInstall: install and relaunch
    later,   // of Found and ReadyToInstall
    skip,    // of Found, unless it is critical: this version is not offered again by itself
    cancel,  // of Checking and Downloading
    close,   // of UpToDate, Failed, and of Found where there is an obstacle
};

/// How people see an update: injected, so that the framework draws nothing. Main thread only.
class Windows {
public:
    virtual ~Windows() = default;

    /// Shows this in place of what was shown before; a window appears in front where there was none, and stays where
    /// the user has put it otherwise. `answer` is called at most once per scene, from the loop, never from within
    /// `show`; the same kind of scene shown again (a download's progress) replaces the earlier one's `answer` too.
    /// Closing the window by the desktop's means is the mildest of the scene's answers.
    virtual void show(Scene scene, std::function<void(Answer)> answer) = 0;

    /// Takes the window away, if there is one. No answer follows.
    virtual void close() = 0;

    /// Somebody asked again for what is shown already.
    virtual void bringToFront() = 0;
};

} // namespace torvane::Updates
