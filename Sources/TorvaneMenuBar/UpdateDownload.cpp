#include "UpdateDownload.h"

#include "Chain/NetworkClient.h"

#include <curl/curl.h>

namespace torvane {

namespace {

/// Where there is no connection, or it breaks: by libcurl's code.
QByteArray connectionSentence(int curlCode) {
    switch (curlCode) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return "The update server cannot be found. Is this computer online?";
    case CURLE_COULDNT_CONNECT:
        return "The update server cannot be reached.";
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
        return "The connection to the update server is not secure.";
    default:
        return "The connection to the update server broke off.";
    }
}

DownloadFailure told(const TransportFailure& failure) {
    using enum TransportFailure::Cause;
    switch (failure.cause()) {
    case timedOut:
        return DownloadFailure("The update server does not answer.");
    case cancelled:
        return DownloadFailure("The program is ending.");
    case tooLarge:
        return DownloadFailure("The update server sends more than it should.");
    case tooShort:
        return DownloadFailure("The update server sends less than it should.");
    case notSecure:
        return DownloadFailure("The update is not to be had over a secure connection.");
    case tooManyRedirects:
        return DownloadFailure("The update server leads in circles.");
    case invalidRequest:
        return DownloadFailure("The update's address makes no sense.");
    case disk:
        return DownloadFailure(QByteArray("The update cannot be saved: ") + failure.what() + '.');
    case connection:
        break;
    }
    return DownloadFailure(connectionSentence(failure.curlCode()));
}

DownloadFailure told(const NetworkFailure& failure) {
    if (failure.code() == 0)
        return DownloadFailure("The update server's answer makes no sense.");
    return DownloadFailure("The update server reports an error (" + QByteArray::number(failure.code()) + ").");
}

} // namespace

Task<QByteArray> UpdateDownload::document(QUrl url, qsizetype limit) {
    try {
        // An answer that was cut short before it was compressed would be confirmed for ever.
        NetworkClient::forget(url);
        Task<QByteArray> fetching =
            NetworkClient::request(Request{.url = url, .bodyLimit = limit, .cachePolicy = CachePolicy::revalidate});
        const QByteArray bytes = co_await fetching;
        co_return bytes;
    } catch (const NetworkFailure& failure) {
        throw told(failure);
    } catch (const TransportFailure& failure) {
        throw told(failure);
    }
}

Task<> UpdateDownload::file(Updates::FileRequest request) {
    try {
        Task<> fetching = NetworkClient::download(FileDownload{.url = request.url,
                                                               .descriptor = request.descriptor,
                                                               .length = request.length,
                                                               .progress = request.progress});
        co_await fetching;
    } catch (const NetworkFailure& failure) {
        throw told(failure);
    } catch (const TransportFailure& failure) {
        throw told(failure);
    }
}

} // namespace torvane
