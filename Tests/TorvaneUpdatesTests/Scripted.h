#pragma once

#include "TorvaneUpdates/Download.h"
#include "TorvaneUpdates/Windows.h"

#include <QHash>
#include <QMap>
#include <QStringList>

#include <optional>

namespace torvane::Updates {

/// Documents and files by address, in small pieces, without any network.
class ScriptedDownload final : public Download {
public:
    QHash<QUrl, QByteArray> bodies;
    bool isHeld = false; // Nothing arrives while this is set.
    int documents = 0;   // How many have been asked for.
    int files = 0;
    std::function<void()> afterPiece{}; // Called when another piece of a file has been written.
    qsizetype pieces = 8;

    Task<QByteArray> document(QUrl url, qsizetype limit) override;
    Task<> file(FileRequest request) override;

private:
    Task<QByteArray> bodyOf(QUrl url);
};

/// Windows that nobody sees: they note the kinds of their scenes, and answer those that they are told to answer.
class ScriptedWindows final : public Windows {
public:
    QStringList scenes;            // "checking", "found", ...: each kind once as long as it stands; "closed", "front"
    QMap<QString, Answer> answers; // by kind: given as soon as the scene is shown
    std::optional<Scene> last;
    QList<qint64> progress;
    std::function<void(const QString& kind)> onShow{};

    void show(Scene scene, std::function<void(Answer)> answer) override;
    void close() override;
    void bringToFront() override;

    /// Answers what is shown.
    void give(Answer answer) const { m_answer(answer); }

    QString kind() const;
    const Offer& offer() const { return std::get<Found>(*last).offer; }
    QString cause() const { return std::get<Failed>(*last).cause; }

private:
    std::function<void(Answer)> m_answer;
};

} // namespace torvane::Updates
