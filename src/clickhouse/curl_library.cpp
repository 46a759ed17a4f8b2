#include "clickhouse/curl_library.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace kiv::clickhouse {
namespace {

constexpr const char* file_name = "libcurl.so.4";

[[noreturn]] void fail() {
  const char* reason = dlerror();
  throw std::runtime_error(reason != nullptr ? reason : std::string(file_name) + " does not start");
}

template <class Function>
void find(void* library, const char* name, Function& into) {
  void* address = dlsym(library, name);
  if (address == nullptr) fail();
  into = reinterpret_cast<Function>(address);
}

curl_library load() {
  void* const library = dlopen(file_name, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) fail();
  decltype(&::curl_global_init) global_init = nullptr;
  find(library, "curl_global_init", global_init);
  if (global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) fail();
  curl_library curl{};
  find(library, "curl_easy_init", curl.easy_init);
  find(library, "curl_easy_setopt", curl.easy_setopt);
  find(library, "curl_easy_getinfo", curl.easy_getinfo);
  find(library, "curl_easy_strerror", curl.easy_strerror);
  find(library, "curl_easy_cleanup", curl.easy_cleanup);
  find(library, "curl_multi_init", curl.multi_init);
  find(library, "curl_multi_add_handle", curl.multi_add_handle);
  find(library, "curl_multi_remove_handle", curl.multi_remove_handle);
  find(library, "curl_multi_perform", curl.multi_perform);
  find(library, "curl_multi_info_read", curl.multi_info_read);
  find(library, "curl_multi_poll", curl.multi_poll);
  find(library, "curl_multi_cleanup", curl.multi_cleanup);
  find(library, "curl_slist_append", curl.slist_append);
  find(library, "curl_slist_free_all", curl.slist_free_all);
  return curl;
}

}  // namespace

const curl_library& loaded_curl() {
  static const curl_library curl = load();
  return curl;
}

}  // namespace kiv::clickhouse
