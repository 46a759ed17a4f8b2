#include "clickhouse/http_connection.h"

#include <algorithm>
#include <cctype>
#include <chrono>

#include "clickhouse/curl_library.h"

namespace kiv::clickhouse {
namespace {

constexpr std::string_view exception_header = "x-clickhouse-exception-code:";

std::string percent_encoded(std::string_view text) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = std::isalnum(byte) != 0 || c == '-' || c == '_' || c == '.' || c == '~';
    if (plain && byte < 0x80) {
      encoded += c;
    } else {
      encoded += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
  return encoded;
}

}  // namespace

struct http_connection::state {
  const curl_library& curl = loaded_curl();
  server_url url;
  CURLM* multi = nullptr;
  CURL* easy = nullptr;
  curl_slist* headers = nullptr;
  std::string target;  // of the present request
  std::string body, exception_code, failure;
  std::chrono::steady_clock::time_point last_life;
  curl_off_t bytes_seen = 0;
  bool active = false, done = true, sent = false, answered = false;
  char message[CURL_ERROR_SIZE] = {};

  static std::size_t take_body(char* bytes, std::size_t, std::size_t size, void* self) {
    static_cast<state*>(self)->body.append(bytes, size);
    return size;
  }
  static std::size_t take_header(char* bytes, std::size_t, std::size_t size, void* self_pointer) {
    auto& self = *static_cast<state*>(self_pointer);
    std::string line(bytes, size);
    std::ranges::transform(line, line.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (line.starts_with(exception_header)) {
      const auto first = line.find_first_of("0123456789");
      const auto last = std::min(line.find_first_not_of("0123456789", first), line.size());
      if (first != std::string::npos) self.exception_code = line.substr(first, last - first);
    }
    // The empty line ends the headers; those of an interim answer do not count.
    if (line == "\r\n" || line == "\n") self.answered = self.status() >= 200;
    return size;
  }

  int status() const {
    long code = 0;
    curl.easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &code);
    return static_cast<int>(code);
  }

  void stop() {
    if (active) curl.multi_remove_handle(multi, easy);
    active = false;
  }

  void note_end(CURLcode result) {
    done = true;
    if (result == CURLE_OK) return;
    long sent_bytes = 0;
    curl.easy_getinfo(easy, CURLINFO_REQUEST_SIZE, &sent_bytes);
    sent = sent_bytes > 0;
    if (result == CURLE_OPERATION_TIMEDOUT) {
      failure = "no connection within " + std::to_string(url.timeout) + " s";
    } else {
      failure = message[0] != '\0' ? message : curl.easy_strerror(result);
    }
  }

  // Ends the request when nothing has moved in either direction for too long.
  void watch() {
    curl_off_t up = 0, down = 0;
    curl.easy_getinfo(easy, CURLINFO_SIZE_UPLOAD_T, &up);
    curl.easy_getinfo(easy, CURLINFO_SIZE_DOWNLOAD_T, &down);
    const auto now = std::chrono::steady_clock::now();
    if (up + down != bytes_seen) last_life = now;
    bytes_seen = up + down;
    if (done || now - last_life < std::chrono::seconds(url.timeout)) return;
    done = sent = true;
    failure = "no sign of life for " + std::to_string(url.timeout) + " s";
    stop();
  }

  // Goes on with the request until something came or it ended.
  void advance() {
    int running = 0;
    if (curl.multi_perform(multi, &running) != CURLM_OK) {
      done = true;
      failure = "the request could not be carried out";
      return;
    }
    int left = 0;
    while (const CURLMsg* note = curl.multi_info_read(multi, &left)) {
      if (note->msg == CURLMSG_DONE) note_end(note->data.result);
    }
    constexpr int longest_wait = 250;  // ms
    if (!done && body.empty()) curl.multi_poll(multi, nullptr, 0, longest_wait, nullptr);
    watch();
  }
};

http_connection::http_connection(const server_url& url) : state_(std::make_unique<state>()) {
  state& s = *state_;
  s.url = url;
  s.multi = s.curl.multi_init();
  s.easy = s.curl.easy_init();
  s.headers = s.curl.slist_append(nullptr, ("X-ClickHouse-User: " + url.user).c_str());
  // A colon without a value would take the header away; a semicolon sends it empty.
  s.headers = s.curl.slist_append(s.headers, url.password.empty()
                                                 ? "X-ClickHouse-Key;"
                                                 : ("X-ClickHouse-Key: " + url.password).c_str());
  s.headers = s.curl.slist_append(s.headers, "Expect:");
  s.headers = s.curl.slist_append(s.headers, "Content-Type: application/octet-stream");
  CURL* e = s.easy;
  s.curl.easy_setopt(e, CURLOPT_HTTPHEADER, s.headers);
  s.curl.easy_setopt(e, CURLOPT_ERRORBUFFER, s.message);
  s.curl.easy_setopt(e, CURLOPT_NOSIGNAL, 1L);
  s.curl.easy_setopt(e, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  s.curl.easy_setopt(e, CURLOPT_TCP_NODELAY, 1L);
  s.curl.easy_setopt(e, CURLOPT_BUFFERSIZE, 262'144L);
  s.curl.easy_setopt(e, CURLOPT_UPLOAD_BUFFERSIZE, 262'144L);
  s.curl.easy_setopt(e, CURLOPT_CONNECTTIMEOUT, static_cast<long>(url.timeout));
  s.curl.easy_setopt(e, CURLOPT_WRITEFUNCTION, state::take_body);
  s.curl.easy_setopt(e, CURLOPT_WRITEDATA, &s);
  s.curl.easy_setopt(e, CURLOPT_HEADERFUNCTION, state::take_header);
  s.curl.easy_setopt(e, CURLOPT_HEADERDATA, &s);
  s.curl.easy_setopt(e, CURLOPT_POST, 1L);
}

http_connection::~http_connection() {
  state_->stop();
  state_->curl.easy_cleanup(state_->easy);
  state_->curl.multi_cleanup(state_->multi);
  state_->curl.slist_free_all(state_->headers);
}

bool http_connection::post(const http_parameters& parameters, std::string_view body) {
  state& s = *state_;
  s.stop();
  s.body.clear();
  s.exception_code.clear();
  s.failure.clear();
  s.message[0] = '\0';
  s.last_life = std::chrono::steady_clock::now();
  s.bytes_seen = 0;
  s.done = s.sent = s.answered = false;
  s.target = (s.url.secure ? "https://" : "http://") + s.url.address() + "/";
  char separator = '?';
  for (const auto& [name, value] : parameters) {
    s.target += separator + std::string(name) + '=' + percent_encoded(value);
    separator = '&';
  }
  s.curl.easy_setopt(s.easy, CURLOPT_URL, s.target.c_str());
  s.curl.easy_setopt(s.easy, CURLOPT_POSTFIELDS, body.data());
  s.curl.easy_setopt(s.easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
  s.active = s.curl.multi_add_handle(s.multi, s.easy) == CURLM_OK;
  while (!s.done && !s.answered) s.advance();
  return s.failure.empty();
}

int http_connection::status() const { return state_->status(); }
const std::string& http_connection::exception_code() const { return state_->exception_code; }
const std::string& http_connection::failure() const { return state_->failure; }
bool http_connection::nothing_was_sent() const { return !state_->sent; }

bool http_connection::read(std::string& into) {
  state& s = *state_;
  while (s.body.empty() && !s.done) s.advance();
  into += s.body;
  const bool more = !s.body.empty();
  s.body.clear();
  return more;
}

std::string http_connection::read_all() {
  std::string all;
  while (read(all)) {
  }
  return all;
}

}  // namespace kiv::clickhouse
