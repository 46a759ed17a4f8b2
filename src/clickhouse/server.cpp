#include "clickhouse/server.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace kiv::clickhouse {
namespace {

using std::chrono::milliseconds;

constexpr std::string_view result_format = "TabSeparatedWithNamesAndTypes";
constexpr milliseconds first_pause(50), longest_pause(2000);
// Enough for servers to see that connections between them are those of a server that has ended.
constexpr milliseconds short_patience(500);

// Attempts again, with pauses, while `may_repeat` says so of the failure.
template <class Attempt, class MayRepeat>
server_failure repeat(milliseconds patience, Attempt attempt, MayRepeat may_repeat) {
  const auto end = std::chrono::steady_clock::now() + patience;
  for (milliseconds pause = first_pause;; pause = std::min(pause * 2, longest_pause)) {
    server_failure failure = attempt();
    if (!may_repeat(failure) || std::chrono::steady_clock::now() + pause > end) return failure;
    std::this_thread::sleep_for(pause);
  }
}

bool nothing_was_done(const server_failure& failure) { return failure.kind == failure_kind::busy; }

bool may_ask_again(const server_failure& failure) {
  return failure.kind == failure_kind::busy || failure.kind == failure_kind::unclear;
}

}  // namespace

server_failure server::try_once(const http_parameters& parameters, std::string_view body) {
  if (!connection_.post(parameters, body)) {
    const bool undone = connection_.nothing_was_sent();
    return {undone ? failure_kind::busy : failure_kind::unclear, 0, connection_.failure()};
  }
  if (connection_.status() == 200 && connection_.exception_code().empty()) return {};
  const int status = connection_.status();
  return read_server_error(status, connection_.read_all());
}

server_failure server::execute(std::string_view sql, std::string_view bytes) {
  // Rows are on their shard when the statement ends; an older name of the setting is known to all.
  http_parameters parameters = {{"database", url_.database}, {"insert_distributed_sync", "1"}};
  if (!bytes.empty()) parameters.emplace_back("query", std::string(sql));
  const auto attempt = [&] {
    server_failure failure = try_once(parameters, bytes.empty() ? sql : bytes);
    if (failure) return failure;
    connection_.read_all();
    if (connection_.failure().empty()) return server_failure();
    return server_failure{failure_kind::unclear, 0, connection_.failure()};
  };
  return repeat(std::chrono::seconds(url_.timeout), attempt, nothing_was_done);
}

server_failure server::execute_without_database(std::string_view sql) {
  const auto attempt = [&] {
    server_failure failure = try_once({}, sql);
    if (!failure) connection_.read_all();
    return failure;
  };
  return repeat(std::chrono::seconds(url_.timeout), attempt, nothing_was_done);
}

server_failure server::try_select(std::string_view sql) {
  const auto ask = [&] {
    // The answer comes when it is whole, so that an error is no part of it.
    http_parameters parameters = {{"database", url_.database},
                                  {"default_format", std::string(result_format)},
                                  {"wait_end_of_query", "1"}};
    if (!reads_only_) parameters.emplace_back("readonly", "1");
    return try_once(parameters, sql);
  };
  server_failure failure = ask();
  if (failure.code == server_code::readonly && !reads_only_) {
    // Who may only read may not even say so.
    reads_only_ = true;
    failure = ask();
  }
  return failure;
}

server_failure server::select(std::string_view sql, bool patient) {
  const auto patience = patient ? milliseconds(std::chrono::seconds(url_.timeout)) : short_patience;
  return repeat(
      patience, [&] { return try_select(sql); }, may_ask_again);
}

std::string in_words(const server_failure& failure, const server_url& url) {
  if (failure.code == server_code::unknown_database) {
    return "server " + url.address() +
           ": no such database; `kivdb setup` makes it: " + failure.text;
  }
  if (failure.code == server_code::unknown_table) {
    return "server " + url.address() +
           ": the tables of kivdb are not there; `kivdb setup` makes them: " + failure.text;
  }
  return "server " + url.address() + ": " + failure.text;
}

}  // namespace kiv::clickhouse
