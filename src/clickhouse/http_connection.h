#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "clickhouse/server_url.h"

namespace kiv::clickhouse {

using http_parameters = std::vector<std::pair<std::string_view, std::string>>;

// One connection to a server, kept between requests, with one request at a time. Nothing waits
// longer than the URL's time-out for the connection or for a sign of life.
class http_connection {
 public:
  explicit http_connection(const server_url& url);
  ~http_connection();
  http_connection(const http_connection&) = delete;
  http_connection& operator=(const http_connection&) = delete;

  // Sends a request; an answer that is not read yet is given up. The body must stay where it is
  // until the answer has been read. False when no answer came.
  bool post(const http_parameters& parameters, std::string_view body);

  // Of the answer.
  int status() const;
  // The value of a header of the answer, empty when it has none.
  const std::string& exception_code() const;

  // Appends some more of the answer's body. False after the last byte, or when it broke off.
  bool read(std::string& into);
  // All that is left.
  std::string read_all();

  // Why no answer came, or why it broke off; empty when neither was so.
  const std::string& failure() const;
  // Whether the failure came before anything reached the server.
  bool nothing_was_sent() const;

 private:
  struct state;
  std::unique_ptr<state> state_;
};

}  // namespace kiv::clickhouse
