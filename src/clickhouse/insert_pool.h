#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "clickhouse/server.h"

namespace kiv::clickhouse {

// Inserts rows by two requests at once, while more are made ready.
class insert_pool {
 public:
  explicit insert_pool(const server_url& url) : url_(url) {}
  ~insert_pool();
  insert_pool(const insert_pool&) = delete;
  insert_pool& operator=(const insert_pool&) = delete;

  // Waits while enough rows are under way. False after a failure.
  bool insert(std::string table, std::string rows);

  // Waits for all that was handed over. The first failure, if any; the next insert begins afresh.
  server_failure finish();

  // Of what was handed over since the last finish.
  server_failure failure() const;

 private:
  struct job {
    std::string table, rows;
  };
  void work();

  server_url url_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<job> waiting_;
  std::size_t under_way_ = 0;
  bool stopped_ = false;
  server_failure failure_;
  std::vector<std::thread> threads_;
};

}  // namespace kiv::clickhouse
