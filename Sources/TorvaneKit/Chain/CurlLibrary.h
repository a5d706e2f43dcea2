#pragma once

#include <curl/curl.h>

namespace torvane {

/// libcurl's functions, by their names there. It brings more than twenty libraries along, whose loading takes longer
/// than all that the program does until its badge stands in the panel. So it is not linked, but loaded when the first
/// request needs it.
struct CurlLibrary {
    decltype(&::curl_easy_cleanup) easy_cleanup;
    decltype(&::curl_easy_getinfo) easy_getinfo;
    decltype(&::curl_easy_init) easy_init;
    decltype(&::curl_easy_pause) easy_pause;
    decltype(&::curl_easy_setopt) easy_setopt;
    decltype(&::curl_easy_strerror) easy_strerror;
    decltype(&::curl_global_init) global_init;
    decltype(&::curl_multi_add_handle) multi_add_handle;
    decltype(&::curl_multi_cleanup) multi_cleanup;
    decltype(&::curl_multi_info_read) multi_info_read;
    decltype(&::curl_multi_init) multi_init;
    decltype(&::curl_multi_remove_handle) multi_remove_handle;
    decltype(&::curl_multi_setopt) multi_setopt;
    decltype(&::curl_multi_socket_action) multi_socket_action;
    decltype(&::curl_share_cleanup) share_cleanup;
    decltype(&::curl_share_init) share_init;
    decltype(&::curl_share_setopt) share_setopt;
    decltype(&::curl_slist_append) slist_append;
    decltype(&::curl_slist_free_all) slist_free_all;
};

/// Loads it on the first call, from whichever thread that comes. A machine without it ends the program, as if it were
/// linked.
const CurlLibrary& curl();

} // namespace torvane
