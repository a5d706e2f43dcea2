#include "UpdatePage.h"

#include "Platform/WebPage.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

using namespace Updates;

/// More characters than anybody calls a version, or reads of a cause or of notes. What is laid out has to end
/// somewhere.
constexpr qsizetype mostOfVersion = 60;
constexpr qsizetype mostOfSentence = 600;
constexpr qsizetype mostOfNotes = 500'000;

QString shortened(const QString& text, qsizetype most) {
    return text.size() > most ? text.left(most - 1) + u'…' : text;
}

QString version(const QString& text) {
    return shortened(text.simplified(), mostOfVersion);
}

QString sentence(const QString& text) {
    return shortened(text.simplified(), mostOfSentence);
}

QString named(const Offer& offer) {
    return u"velisk "_s + version(offer.version);
}

/// As the user's language writes figures.
QString size(qint64 bytes) {
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QString whatIsThere(const Offer& offer) {
    const QString have = u"You have "_s + version(offer.currentVersion) + u'.';
    if (!offer.obstacle.isEmpty())
        return have + u' ' + sentence(offer.obstacle);
    return offer.length > 0 ? have + u" The download is "_s + size(offer.length) + u'.' : have;
}

QString warningOf(const Offer& offer) {
    return offer.isCritical ? u"This update is critical, so that it cannot be skipped."_s : QString();
}

QList<UpdateChoice> choicesOf(const Offer& offer) {
    if (!offer.obstacle.isEmpty())
        return {{u"Close"_s, Answer::close}};
    QList<UpdateChoice> choices{{u"Install Update"_s, Answer::install}, {u"Remind Me Later"_s, Answer::later}};
    if (!offer.isCritical)
        choices.append({u"Skip This Version"_s, Answer::skip});
    return choices;
}

UpdatePage page(const Checking&) {
    return {
        .headline = u"Checking for updates…"_s,
        .text = u"This takes a moment."_s,
        .choices = {{u"Cancel"_s, Answer::cancel}},
        .mildest = Answer::cancel,
    };
}

UpdatePage page(const Found& scene) {
    const Offer& offer = scene.offer;
    return {
        .headline = named(offer) + u" is available"_s,
        .text = whatIsThere(offer),
        .warning = warningOf(offer),
        .notes = shortened(offer.notes.trimmed(), mostOfNotes),
        .notesLink = isWebPage(offer.notesLink) ? offer.notesLink : QUrl(),
        .choices = choicesOf(offer),
        .mildest = offer.obstacle.isEmpty() ? Answer::later : Answer::close,
    };
}

UpdatePage page(const UpToDate& scene) {
    return {
        .headline = u"velisk is up to date"_s,
        .text = u"You have "_s + version(scene.currentVersion) + u", and there is no newer version."_s,
        .choices = {{u"Close"_s, Answer::close}},
        .mildest = Answer::close,
    };
}

UpdatePage page(const Downloading& scene) {
    const qint64 length = std::max<qint64>(scene.offer.length, 1);
    const qint64 received = std::clamp<qint64>(scene.received, 0, length);
    return {
        .headline = u"Downloading "_s + named(scene.offer),
        .text = u"Nothing is installed before you say so."_s,
        .progress = UpdateProgress{static_cast<double>(received) / static_cast<double>(length),
                                   size(received) + u" of "_s + size(length)},
        .choices = {{u"Cancel"_s, Answer::cancel}},
        .mildest = Answer::cancel,
    };
}

UpdatePage page(const Verifying& scene) {
    return {
        .headline = u"Verifying "_s + named(scene.offer),
        .text = u"Nothing is installed before you say so."_s,
        .progress = UpdateProgress{1, u"Checking that it is signed and whole…"_s},
    };
}

UpdatePage page(const ReadyToInstall& scene) {
    return {
        .headline = named(scene.offer) + u" is ready to install"_s,
        .text = u"velisk ends and starts again as the new version."_s,
        .choices = {{u"Install and Relaunch"_s, Answer::install}, {u"Later"_s, Answer::later}},
        .mildest = Answer::later,
    };
}

UpdatePage page(const Installing& scene) {
    return {
        .headline = u"Installing "_s + named(scene.offer),
        .text = u"velisk starts again in a moment."_s,
    };
}

UpdatePage page(const Failed& scene) {
    return {
        .headline = u"velisk could not be updated"_s,
        .text = sentence(scene.cause),
        .choices = {{u"Close"_s, Answer::close}},
        .mildest = Answer::close,
    };
}

} // namespace

std::optional<UpdateChoice> UpdatePage::byDefault() const {
    const bool hasDefault = !choices.isEmpty() && choices.first().answer != Answer::cancel;
    return hasDefault ? std::optional(choices.first()) : std::nullopt;
}

UpdatePage pageOf(const Scene& scene) {
    return std::visit([](const auto& each) { return page(each); }, scene);
}

} // namespace torvane
