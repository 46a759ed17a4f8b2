#pragma once

#include <string>
#include <string_view>

namespace kiv::clickhouse {

enum class failure_kind {
  none,
  busy,       // nothing was done; it may go better a moment later
  unclear,    // what was asked for may have been done or not
  statement,  // the server does not accept the statement
  server,     // anything else that is wrong with the server or with what is allowed
};

// What became of a request.
struct server_failure {
  failure_kind kind = failure_kind::none;
  int code = 0;      // of the server; 0 when it is none of its own
  std::string text;  // for people, without the server's address

  explicit operator bool() const { return kind != failure_kind::none; }
};

// Numbers of the server that callers ask for.
enum server_code : int {
  unknown_table = 60,
  unknown_database = 81,
  readonly = 164,
};

// Reads the answer to a request that was not carried out.
server_failure read_server_error(int status, std::string_view body);

}  // namespace kiv::clickhouse
