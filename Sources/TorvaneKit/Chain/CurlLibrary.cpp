#include "Chain/CurlLibrary.h"

#include <QtGlobal>

#include <dlfcn.h>
#include <type_traits>

/// Asked by GnuTLS as it is loaded: it does not begin by itself. This is its documented switch, which a program has by
/// defining this function (GNUTLS_SKIP_GLOBAL_INIT); the linker is told to export it. libcurl brings GnuTLS along for
/// LDAP and RTMP, which nothing here speaks, and both begin it themselves. Unbegun, it takes a megabyte less.
extern "C" int _gnutls_global_init_skip() {
    return 1;
}

namespace torvane {

namespace {

void* open() {
    void* library = dlopen("libcurl.so.4", RTLD_LAZY | RTLD_LOCAL); // Its version since 2006.
    if (!library)
        qFatal("libcurl is missing: %s", dlerror());
    return library;
}

CurlLibrary load() {
    void* library = open(); // Stays: threads of its own may run until the end.
    const auto find = [library](const char* name, auto& function) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
        if (!function)
            qFatal("libcurl is too old: %s", dlerror());
    };
    CurlLibrary found{};
    find("curl_easy_cleanup", found.easy_cleanup);
    find("curl_easy_getinfo", found.easy_getinfo);
    find("curl_easy_init", found.easy_init);
    find("curl_easy_pause", found.easy_pause);
    find("curl_easy_setopt", found.easy_setopt);
    find("curl_easy_strerror", found.easy_strerror);
    find("curl_global_init", found.global_init);
    find("curl_multi_add_handle", found.multi_add_handle);
    find("curl_multi_cleanup", found.multi_cleanup);
    find("curl_multi_info_read", found.multi_info_read);
    find("curl_multi_init", found.multi_init);
    find("curl_multi_remove_handle", found.multi_remove_handle);
    find("curl_multi_setopt", found.multi_setopt);
    find("curl_multi_socket_action", found.multi_socket_action);
    find("curl_share_cleanup", found.share_cleanup);
    find("curl_share_init", found.share_init);
    find("curl_share_setopt", found.share_setopt);
    find("curl_slist_append", found.slist_append);
    find("curl_slist_free_all", found.slist_free_all);
    return found;
}

} // namespace

const CurlLibrary& curl() {
    static const CurlLibrary library = load();
    return library;
}

} // namespace torvane
