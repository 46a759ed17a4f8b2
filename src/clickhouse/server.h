#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "clickhouse/http_connection.h"
#include "clickhouse/server_error.h"
#include "clickhouse/server_url.h"

namespace kiv::clickhouse {

// Sends statements to a server, one at a time. What it is asked to read cannot change anything.
class server {
 public:
  explicit server(const server_url& url) : url_(url), connection_(url) {}

  const server_url& url() const { return url_; }

  // Carries a statement out that changes something and has no rows. Does so again, with pauses and
  // for as long as the URL's time-out, when nothing was done because the server is busy or away.
  // `bytes`: rows to insert, when the statement is an INSERT.
  server_failure execute(std::string_view sql, std::string_view bytes = {});
  // The same without the URL's database, which may not be there yet.
  server_failure execute_without_database(std::string_view sql);

  // Sends a SELECT. After no failure the answer is to be read from `connection()`: names, types
  // and rows, separated by tabs. Asks again a moment later when the server was busy or away, a
  // patient one for as long as the URL's time-out.
  server_failure select(std::string_view sql, bool patient = false);
  http_connection& connection() { return connection_; }

 private:
  server_failure try_once(const http_parameters& parameters, std::string_view body);
  server_failure try_select(std::string_view sql);

  server_url url_;
  http_connection connection_;
  bool reads_only_ = false;  // the server lets this user do nothing else anyway
};

// The text of a failure with the address of the server.
std::string in_words(const server_failure& failure, const server_url& url);

}  // namespace kiv::clickhouse
