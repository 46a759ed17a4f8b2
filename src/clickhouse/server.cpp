#include "clickhouse/server.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace kiv::clickhouse {
namespace {

constexpr std::string_view result_format = "TabSeparatedWithNamesAndTypes";

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

server_failure server::repeat(const std::function<server_failure()>& attempt) const {
  using clock = std::chrono::steady_clock;
  const auto end = clock::now() + std::chrono::seconds(url_.timeout);
  auto pause = std::chrono::milliseconds(100);
  for (;;) {
    server_failure failure = attempt();
    if (failure.kind != failure_kind::busy || clock::now() + pause > end) return failure;
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, std::chrono::milliseconds(2000));
  }
}

server_failure server::execute(std::string_view sql, std::string_view bytes) {
  // Rows are on their shard when the statement ends; an older name of the setting is known to all.
  http_parameters parameters = {{"database", url_.database}, {"insert_distributed_sync", "1"}};
  if (!bytes.empty()) parameters.emplace_back("query", std::string(sql));
  return repeat([&] {
    server_failure failure = try_once(parameters, bytes.empty() ? sql : bytes);
    if (failure) return failure;
    connection_.read_all();
    if (connection_.failure().empty()) return server_failure();
    return server_failure{failure_kind::unclear, 0, connection_.failure()};
  });
}

server_failure server::execute_without_database(std::string_view sql) {
  return repeat([&] {
    server_failure failure = try_once({}, sql);
    if (!failure) connection_.read_all();
    return failure;
  });
}

server_failure server::select(std::string_view sql) {
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
  // A connection that the server has closed meanwhile is no failure yet.
  if (failure.code == 0 && failure.kind == failure_kind::unclear &&
      failure.text.find("no sign of life") == std::string::npos) {
    failure = ask();
  }
  return failure;
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
