#include "Support/StandInAnswer.h"

#include <array>
#include <cstdint>

namespace torvane {

namespace {

/// The cyclic redundancy check of RFC 1952, section 8.
std::uint32_t crc32(const QByteArray& bytes) {
    static const auto table = [] {
        std::array<std::uint32_t, 256> entries{};
        for (std::uint32_t n = 0; n < entries.size(); ++n) {
            std::uint32_t remainder = n;
            for (int bit = 0; bit < 8; ++bit)
                remainder = (remainder & 1U) != 0 ? 0xedb88320U ^ (remainder >> 1U) : remainder >> 1U;
            entries[n] = remainder;
        }
        return entries;
    }();
    std::uint32_t check = 0xffffffffU;
    for (const char byte : bytes)
        check = table[(check ^ static_cast<std::uint8_t>(byte)) & 0xffU] ^ (check >> 8U);
    return check ^ 0xffffffffU;
}

void appendLittleEndian(QByteArray& bytes, std::uint32_t number) {
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes.append(static_cast<char>((number >> shift) & 0xffU));
}

bool hasBody(int code) {
    return code >= 200 && code != 204 && code != 304;
}

} // namespace

QByteArray gzip(const QByteArray& bytes) {
    // qCompress: a length of 4 bytes, a zlib header of 2, the deflated data, a check sum of 4.
    const QByteArray deflated = qCompress(bytes);
    QByteArray file = QByteArray::fromHex("1f8b08000000000000ff") + deflated.sliced(6, deflated.size() - 10);
    appendLittleEndian(file, crc32(bytes));
    appendLittleEndian(file, static_cast<std::uint32_t>(bytes.size()));
    return file;
}

StandInAnswer StandInAnswer::ok(const QByteArray& body) {
    return status(200, body);
}

StandInAnswer StandInAnswer::status(int code, const QByteArray& body) {
    StandInAnswer answer;
    answer.code = code;
    answer.body = body;
    answer.hasLength = hasBody(code);
    return answer;
}

StandInAnswer StandInAnswer::redirect(int code, const QByteArray& location) {
    return status(code, "moved").header("Location", location);
}

StandInAnswer StandInAnswer::raw(const QByteArray& bytes) {
    StandInAnswer answer;
    answer.head = bytes;
    answer.ending = Ending::silence;
    return answer;
}

StandInAnswer StandInAnswer::silent() {
    return ok({}).cutShortInHead(0, Ending::silence);
}

StandInAnswer StandInAnswer::endlessBody() {
    StandInAnswer answer = ok({}).withoutLength();
    answer.ending = Ending::endlessFilling;
    answer.filling = QByteArray(16384, 'x');
    return answer;
}

StandInAnswer StandInAnswer::endlessHead() {
    StandInAnswer answer = raw("HTTP/1.1 200 OK\r\n");
    answer.ending = Ending::endlessFilling;
    answer.filling = QByteArray("X-Filler: 0123456789abcdef\r\n").repeated(512);
    return answer;
}

StandInAnswer StandInAnswer::header(const QByteArray& name, const QByteArray& value) const {
    StandInAnswer answer = *this;
    answer.headers.append({name, value});
    return answer;
}

StandInAnswer StandInAnswer::gzipped() const {
    StandInAnswer answer = header("Content-Encoding", "gzip");
    answer.body = gzip(body);
    return answer;
}

StandInAnswer StandInAnswer::chunked() const {
    StandInAnswer answer = header("Transfer-Encoding", "chunked");
    answer.isChunked = true;
    answer.hasLength = false;
    return answer;
}

StandInAnswer StandInAnswer::withoutLength() const {
    StandInAnswer answer = *this;
    answer.hasLength = false;
    return answer;
}

StandInAnswer StandInAnswer::dripped(qsizetype bytes, std::chrono::milliseconds every) const {
    StandInAnswer answer = *this;
    answer.bytesPerStep = bytes;
    answer.step = every;
    return answer;
}

StandInAnswer StandInAnswer::cutShort(qsizetype bytes, Ending how) const {
    return cutShortInHead(headBytes().size() + bytes, how);
}

StandInAnswer StandInAnswer::cutShortInHead(qsizetype bytes, Ending how) const {
    StandInAnswer answer = *this;
    answer.sent = bytes;
    answer.ending = how;
    return answer;
}

StandInAnswer StandInAnswer::closing() const {
    StandInAnswer answer = header("Connection", "close");
    answer.ending = Ending::closeNotify;
    return answer;
}

QByteArray StandInAnswer::wire(bool isHead) const {
    const QByteArray whole = isHead ? headBytes() : headBytes() + bodyBytes();
    return sent < 0 ? whole : whole.first(qMin(sent, whole.size()));
}

QByteArray StandInAnswer::headBytes() const {
    if (!head.isEmpty())
        return head;
    QByteArray lines = "HTTP/1.1 " + QByteArray::number(code) + " Stand-in\r\n";
    for (const auto& [name, value] : headers)
        lines += name + ": " + value + "\r\n";
    if (hasLength)
        lines += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    return lines + "\r\n";
}

QByteArray StandInAnswer::bodyBytes() const {
    if (!isChunked)
        return body;
    QByteArray chunks;
    for (qsizetype at = 0; at < body.size(); at += 64) {
        const QByteArray chunk = body.mid(at, 64);
        chunks += QByteArray::number(chunk.size(), 16) + "\r\n" + chunk + "\r\n";
    }
    return chunks + "0\r\n\r\n";
}

} // namespace torvane
