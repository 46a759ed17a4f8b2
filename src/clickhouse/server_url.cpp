#include "clickhouse/server_url.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "util/printable.h"

namespace kiv::clickhouse {
namespace {

constexpr std::string_view plain_scheme = "clickhouse://", secure_scheme = "clickhouses://";
constexpr std::uint16_t secure_port = 8443;

int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool decode(std::string_view text, std::string& into) {
  into.clear();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      into += text[i];
      continue;
    }
    if (text.size() - i < 3) return false;
    const int high = hex_digit(text[i + 1]), low = hex_digit(text[i + 2]);
    if (high < 0 || low < 0) return false;
    into += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return true;
}

template <class Number>
bool read_number(std::string_view text, Number& into) {
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), into);
  return failure == std::errc() && end == text.data() + text.size() && into > 0;
}

// What stands in front of the separator, which is taken off `text` with it; all when there is none.
std::string_view take_until(std::string_view& text, char separator) {
  const auto at = std::min(text.find(separator), text.size());
  const auto part = text.substr(0, at);
  text.remove_prefix(std::min(at + 1, text.size()));
  return part;
}

bool read_host(std::string_view text, server_url& url) {
  std::string_view port;
  if (text.starts_with('[')) {
    const auto close = text.find(']');
    if (close == std::string_view::npos) return false;
    url.host = text.substr(1, close - 1);
    port = text.substr(close + 1);
  } else {
    const auto colon = std::min(text.find(':'), text.size());
    if (!decode(text.substr(0, colon), url.host)) return false;
    port = text.substr(colon);
  }
  const auto is_odd = [](char c) {
    return static_cast<unsigned char>(c) <= ' ' ||
           std::string_view("/?#@\\").find(c) != std::string_view::npos;
  };
  if (url.host.empty() || std::ranges::any_of(url.host, is_odd)) return false;
  return port.empty() || (port[0] == ':' && read_number(port.substr(1), url.port));
}

bool read_parameters(std::string_view text, server_url& url, std::string& error) {
  while (!text.empty()) {
    std::string_view parameter = take_until(text, '&');
    const auto name = take_until(parameter, '=');
    std::string value;
    bool good = decode(parameter, value);
    if (name == "cluster") {
      url.cluster = value;
      good = good && !value.empty();
    } else if (name == "secure") {
      good = good && (value == "0" || value == "1");
      url.secure = url.secure || value == "1";
    } else if (name == "timeout") {
      good = good && read_number(value, url.timeout) && url.timeout <= 86'400;
    } else {
      error = "no parameter " + quoted_name(name) +
              " in the URL of a server; there are cluster, secure and timeout";
      return false;
    }
    if (!good) {
      error = "the parameter " + quoted_name(name) + " of the server's URL has no good value";
      return false;
    }
  }
  return true;
}

bool find_password(server_url& url, std::string& error) {
  if (const char* password = std::getenv("KIVDB_CLICKHOUSE_PASSWORD")) {
    url.password = password;
    return true;
  }
  const char* name = std::getenv("KIVDB_CLICKHOUSE_PASSWORD_FILE");
  if (name == nullptr) return true;
  std::ifstream file(name, std::ios::binary);
  if (!std::getline(file, url.password)) {
    error = std::string(name) + ": holds no password, or cannot be read";
    return false;
  }
  if (url.password.ends_with('\r')) url.password.pop_back();
  return true;
}

}  // namespace

std::string server_url::address() const {
  const bool is_ipv6 = host.find(':') != std::string::npos;
  return (is_ipv6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

bool is_server_url(std::string_view source) {
  return source.starts_with(plain_scheme) || source.starts_with(secure_scheme);
}

std::optional<server_url> parse_server_url(std::string_view text, std::string& error) {
  const auto fail = [&](std::string what) {
    error = std::move(what);
    return std::nullopt;
  };
  if (!is_server_url(text)) {
    return fail("not a server's URL, which is clickhouse://host:port/database");
  }
  server_url url;
  url.secure = text.starts_with(secure_scheme);
  text.remove_prefix(url.secure ? secure_scheme.size() : plain_scheme.size());
  const auto mark = std::min(text.find('?'), text.size());
  std::string_view parameters = text.substr(mark);
  if (!parameters.empty()) parameters.remove_prefix(1);
  if (!read_parameters(parameters, url, error)) return std::nullopt;
  if (url.secure) url.port = secure_port;

  // A password with an '@' or '/' of its own must be written with %40 and %2F.
  std::string_view place = text.substr(0, mark);
  const auto at = place.rfind('@');
  bool has_password = false;
  if (at != std::string_view::npos) {
    std::string_view user = place.substr(0, at);
    place.remove_prefix(at + 1);
    has_password = user.find(':') != std::string_view::npos;
    if (!decode(take_until(user, ':'), url.user) || !decode(user, url.password)) {
      return fail("a '%' in the server's URL is not followed by two hexadecimal digits");
    }
  }
  const std::string_view host = take_until(place, '/');
  if (!read_host(host, url)) return fail("the server's URL names no good host and port");
  if (!decode(place, url.database) || url.database.empty() ||
      url.database.find('/') != std::string::npos) {
    return fail("the server's URL names no database: clickhouse://host:port/database");
  }
  if (url.user.empty()) return fail("the server's URL has an empty user");
  if (!has_password && !find_password(url, error)) return std::nullopt;
  // They go into lines of a header.
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7f; };
  if (std::ranges::any_of(url.user + url.password, is_control)) {
    return fail("the server's user or password has a control character");
  }
  return url;
}

std::string without_password(std::string_view source) {
  if (!is_server_url(source)) return std::string(source);
  const auto begin = source.find("://") + 3;
  const auto mark = std::min(source.find('?', begin), source.size());
  const auto at = source.substr(0, mark).rfind('@');
  if (at == std::string_view::npos || at < begin) return std::string(source);
  const auto colon = std::min(source.find(':', begin), at);
  return std::string(source.substr(0, colon)) + std::string(source.substr(at));
}

}  // namespace kiv::clickhouse
