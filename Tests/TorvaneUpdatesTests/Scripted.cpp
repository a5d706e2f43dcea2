#include "Scripted.h"

#include "Support/NextTurn.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace torvane::Updates {

namespace {

QString kindOf(const Scene& scene) {
    static const std::array names{u"checking"_s,  u"found"_s, u"up to date"_s, u"downloading"_s,
                                  u"verifying"_s, u"ready"_s, u"installing"_s, u"failed"_s};
    return names.at(scene.index());
}

void writeAll(int descriptor, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (count <= 0)
            throw std::runtime_error(std::string("The file cannot be written: ") + std::strerror(errno) + '.');
        bytes = bytes.sliced(count);
    }
}

} // namespace

Task<QByteArray> ScriptedDownload::bodyOf(QUrl url) {
    do {
        NextTurn turn;
        co_await turn;
    } while (isHeld);
    if (!bodies.contains(url))
        throw std::runtime_error("The server does not know " + url.toString().toStdString() + '.');
    co_return bodies.value(url);
}

Task<QByteArray> ScriptedDownload::document(QUrl url, qsizetype limit) {
    ++documents;
    Task<QByteArray> fetching = bodyOf(url);
    const QByteArray body = co_await fetching;
    if (body.size() > limit)
        throw std::runtime_error("The document is too large.");
    co_return body;
}

Task<> ScriptedDownload::file(FileRequest request) {
    ++files;
    Task<QByteArray> fetching = bodyOf(request.url);
    const QByteArray body = co_await fetching;
    const qsizetype piece = std::max<qsizetype>(1, body.size() / pieces);
    for (qsizetype sent = 0; sent < body.size(); sent += piece) {
        NextTurn turn;
        co_await turn;
        writeAll(request.descriptor, QByteArrayView(body).sliced(sent, std::min(piece, body.size() - sent)));
        request.progress(std::min(sent + piece, body.size()));
        if (afterPiece)
            afterPiece();
        while (isHeld) {
            NextTurn held;
            co_await held;
        }
    }
}

void ScriptedWindows::show(Scene scene, std::function<void(Answer)> answer) {
    const QString kind = kindOf(scene);
    if (scenes.isEmpty() || scenes.last() != kind)
        scenes.append(kind);
    if (const auto* downloading = std::get_if<Downloading>(&scene))
        progress.append(downloading->received);
    last = std::move(scene);
    m_answer = std::move(answer);
    if (onShow)
        onShow(kind);
    if (answers.contains(kind))
        m_answer(answers.value(kind));
}

void ScriptedWindows::close() {
    scenes.append(u"closed"_s);
    last.reset();
    m_answer = nullptr;
}

void ScriptedWindows::bringToFront() {
    scenes.append(u"front"_s);
}

QString ScriptedWindows::kind() const {
    return last ? kindOf(*last) : QString();
}

} // namespace torvane::Updates
