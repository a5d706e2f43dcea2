#pragma once

#include "Support/UserDefaults.h"
#include "TorvaneUpdates/Updater.h"
#include "TorvaneUpdatesTests/Scripted.h"

#include <QTemporaryDir>
#include <QUrl>

#include <memory>
#include <sys/types.h>

namespace torvane::Updates {

/// What a feed says of one version; the payload's address, length and signature go by themselves.
struct FeedItem final {
    QString version = QStringLiteral("2.0");
    QByteArray payload{};
    QString more{};                 // further elements
    QByteArray signature{};         // another one than the right one
    std::optional<qint64> length{}; // another one than the right one
};

/// An updater with everything around it: a program in a folder of its own to be updated, preferences, a key pair, a
/// feed, and scripted windows and network. The time is noon of a certain day until it is set.
class UpdateRig final {
public:
    static constexpr int patience = 120'000; // Milliseconds; far beyond what any step takes.

    /// In a new folder; its owner removes it.
    UpdateRig();

    /// In a folder that may have been used before, with the key pair of this seed.
    UpdateRig(const QString& folder, const QByteArray& seed);
    ~UpdateRig();

    ScriptedDownload download;
    Download* network = &download;                             // What the updater is given from the next start on.
    QUrl base{QStringLiteral("https://example.org/torvane/")}; // Where feed and payloads are.
    ScriptedWindows windows;
    std::unique_ptr<Updater> updater;
    bool successorComesUp = true;
    bool relaunchHangs = false; // The successor neither comes up nor fails.
    QStringList relaunched;     // The files that were to be relaunched.
    int replaced = 0;

    /// The bytes of one of the sample programs.
    static QByteArray sample(const char* name);

    QString folder() const { return m_folder; }
    QString programFolder() const { return m_folder + QStringLiteral("/bin"); }
    QString program() const { return programFolder() + QStringLiteral("/velisk"); }

    QUrl feed() const;
    QUrl payload(const QString& version) const;
    Properties properties() const;
    QByteArray sign(const QByteArray& payload) const;

    /// Publishes these versions, each with its payload.
    void publish(const QList<FeedItem>& items);
    void publishNew() { publish({{.payload = sample("new")}}); }

    /// A new run of the program, with what the last one has kept; the updater starts.
    void start() { start(properties()); }
    void start(const Properties& properties);

    /// Until it can check, or can again.
    void waitUntilReady() const;
    void waitForScene(const QString& kind) const;

    /// Until so many documents were asked for.
    void waitForDocuments(int count) const;

    /// Lets everything happen that would happen of itself.
    static void turnTheLoop();

    /// Checks by hand and answers "install" to everything, until the program is replaced or a failure is shown.
    void installByHand();

    UserDefaults& defaults() { return *m_defaults; }

    /// Sets the time of day.
    static void setTime(const QDateTime& now);
    static void setHoursAfterNoon(int hours) { setTime(noon().addSecs(qint64{hours} * 3600)); }
    static QDateTime noon();

private:
    Task<bool> relaunch(QString executable);

    std::unique_ptr<QTemporaryDir> m_ownFolder;
    const QString m_folder;
    QByteArray m_publicKey;
    QByteArray m_secretKey;
    std::unique_ptr<UserDefaults> m_defaults;
};

} // namespace torvane::Updates
