#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kiv::clickhouse {

// Where a database of a ClickHouse server is, and who asks.
struct server_url {
  bool secure = false;
  std::string user = "default", password;
  std::string host;  // an IPv6 address without brackets
  std::uint16_t port = 8123;
  std::string database;
  std::string cluster;  // empty: this server alone
  int timeout = 30;     // seconds: for connecting, of silence, and of trying again

  std::string address() const;  // "host:port", for messages
};

// Whether a source is such a URL and not a path.
bool is_server_url(std::string_view source);

// Reads clickhouse://[user[:password]@]host[:port]/database[?cluster=NAME&secure=1&timeout=S], or
// the same with clickhouses:// for HTTPS. A password that is not in it is taken from
// KIVDB_CLICKHOUSE_PASSWORD, or from the file that KIVDB_CLICKHOUSE_PASSWORD_FILE names. Nothing,
// with `error` set, when it cannot be read; the error never has the password.
std::optional<server_url> parse_server_url(std::string_view text, std::string& error);

// The text with what may be a password in a URL taken out; for messages.
std::string without_password(std::string_view source);

}  // namespace kiv::clickhouse
