#pragma once

#include <curl/curl.h>

namespace kiv::clickhouse {

// The functions of libcurl that are used. It is loaded when a server is asked for the first time:
// with the thirty libraries that it needs itself, loading it takes as long as many a report.
struct curl_library {
  decltype(&::curl_easy_init) easy_init;
  decltype(&::curl_easy_setopt) easy_setopt;
  decltype(&::curl_easy_getinfo) easy_getinfo;
  decltype(&::curl_easy_strerror) easy_strerror;
  decltype(&::curl_easy_cleanup) easy_cleanup;
  decltype(&::curl_multi_init) multi_init;
  decltype(&::curl_multi_add_handle) multi_add_handle;
  decltype(&::curl_multi_remove_handle) multi_remove_handle;
  decltype(&::curl_multi_perform) multi_perform;
  decltype(&::curl_multi_info_read) multi_info_read;
  decltype(&::curl_multi_poll) multi_poll;
  decltype(&::curl_multi_cleanup) multi_cleanup;
  decltype(&::curl_slist_append) slist_append;
  decltype(&::curl_slist_free_all) slist_free_all;
};

// Throws std::runtime_error, with the reason, when it cannot be loaded.
const curl_library& loaded_curl();

}  // namespace kiv::clickhouse
