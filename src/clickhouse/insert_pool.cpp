#include "clickhouse/insert_pool.h"

#include <utility>

namespace kiv::clickhouse {
namespace {

constexpr std::size_t requests_at_once = 2;

}  // namespace

insert_pool::~insert_pool() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    waiting_.clear();
  }
  changed_.notify_all();
  for (auto& thread : threads_) thread.join();
}

bool insert_pool::insert(std::string table, std::string rows) {
  if (rows.empty()) return !failure();
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return failure_ || waiting_.size() < requests_at_once; });
  if (failure_) return false;
  waiting_.push_back({std::move(table), std::move(rows)});
  if (threads_.size() < requests_at_once) threads_.emplace_back([this] { work(); });
  lock.unlock();
  changed_.notify_all();
  return true;
}

server_failure insert_pool::finish() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return waiting_.empty() && under_way_ == 0; });
  return std::exchange(failure_, {});
}

server_failure insert_pool::failure() const {
  const std::lock_guard lock(mutex_);
  return failure_;
}

void insert_pool::work() {
  server target(url_);
  for (;;) {
    job next;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return stopped_ || !waiting_.empty(); });
      if (stopped_) return;
      next = std::move(waiting_.front());
      waiting_.pop_front();
      ++under_way_;
    }
    changed_.notify_all();
    server_failure failed =
        target.execute("INSERT INTO " + next.table + " FORMAT TabSeparated", next.rows);
    {
      const std::lock_guard lock(mutex_);
      --under_way_;
      if (failed) {
        // What waits belongs to the same load.
        waiting_.clear();
        if (!failure_) failure_ = std::move(failed);
      }
    }
    changed_.notify_all();
  }
}

}  // namespace kiv::clickhouse
