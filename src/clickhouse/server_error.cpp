#include "clickhouse/server_error.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "util/printable.h"

namespace kiv::clickhouse {
namespace {

// Too many queries at once; too many parts; no shard reached; no memory just now; server ends.
constexpr std::array<int, 6> busy_codes = {202, 252, 279, 241, 236, 203};
// Network faults and time-outs between servers: a shard may have done its part.
constexpr std::array<int, 8> unclear_codes = {3, 32, 159, 209, 210, 394, 425, 999};
// Users, passwords, rights, places on disk, versions.
constexpr std::array<int, 14> server_codes = {81,  164, 170, 192, 193, 194,  195,
                                              243, 291, 482, 497, 516, 1000, 1001};

template <std::size_t Size>
bool holds(const std::array<int, Size>& codes, int code) {
  return std::ranges::find(codes, code) != codes.end();
}

failure_kind kind_of(int code) {
  if (holds(busy_codes, code)) return failure_kind::busy;
  if (holds(unclear_codes, code)) return failure_kind::unclear;
  return holds(server_codes, code) ? failure_kind::server : failure_kind::statement;
}

void remove_all(std::string& text, std::string_view what) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
    text.erase(at, what.size());
  }
}

// The message of an exception without what is of use to the server's makers alone.
std::string message_of(std::string_view body) {
  std::string text(body);
  for (const std::string_view end :
       {", e.what() = ", ", Stack trace", "(version ", "\nStack trace"}) {
    text.resize(std::min(text.find(end), text.size()));
  }
  remove_all(text, "e.displayText() = ");
  remove_all(text, "DB::NetException: ");
  remove_all(text, "DB::Exception: ");
  std::ranges::replace(text, '\n', ' ');
  while (text.ends_with(' ')) text.pop_back();
  constexpr std::size_t longest = 600;
  if (text.size() > longest) text.replace(longest, text.size() - longest, "...");
  return printable(text);
}

}  // namespace

server_failure read_server_error(int status, std::string_view body) {
  constexpr std::string_view mark = "Code: ";
  server_failure failure;
  if (body.starts_with(mark)) {
    body.remove_prefix(mark.size());
    const auto [end, bad] = std::from_chars(body.data(), body.data() + body.size(), failure.code);
    if (bad == std::errc() && failure.code > 0) {
      body.remove_prefix(static_cast<std::size_t>(end - body.data()));
      body.remove_prefix(std::min(body.find_first_not_of(",. "), body.size()));
      failure.kind = kind_of(failure.code);
      failure.text = message_of(body);
      return failure;
    }
  }
  // A proxy that has no server just now says so.
  const bool busy = status == 429 || status == 503;
  failure.kind = busy                             ? failure_kind::busy
                 : status == 502 || status == 504 ? failure_kind::unclear
                                                  : failure_kind::server;
  failure.code = 0;
  failure.text =
      "answers with status " + std::to_string(status) + ", which is no answer of ClickHouse";
  return failure;
}

}  // namespace kiv::clickhouse
