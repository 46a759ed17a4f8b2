#include "rows/row_stream.h"

#include <algorithm>

namespace kiv::rows {
namespace {

constexpr std::size_t batch_bytes = std::size_t{512} << 10;
constexpr std::size_t batch_rows = 512;
constexpr std::size_t batches_ahead = 4;

}  // namespace

row_stream::row_stream(const std::string& path, const csv_table& table, separators seps)
    : table_(table), reader_(path, table.end), parser_(table, seps), empty_(batches_ahead) {
  if (is_open()) thread_ = std::thread([this] { produce(); });
}

row_stream::~row_stream() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void row_stream::produce() {
  for (;;) {
    row_batch batch;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return stopped_ || !empty_.empty(); });
      if (stopped_) return;
      batch = std::move(empty_.front());
      empty_.pop_front();
    }
    const bool more = fill(batch);
    {
      const std::lock_guard lock(mutex_);
      full_.push_back(std::move(batch));
      finished_ = !more;
    }
    changed_.notify_all();
    if (!more) return;
  }
}

bool row_stream::next(row_batch& batch) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return finished_ || !full_.empty(); });
  if (full_.empty()) return false;
  std::swap(batch, full_.front());
  empty_.push_back(std::move(full_.front()));
  full_.pop_front();
  lock.unlock();
  changed_.notify_all();
  return true;
}

// False when the file is at its end.
bool row_stream::fill(row_batch& batch) {
  batch.bytes.clear();
  batch.fields.clear();
  batch.rows.clear();
  // Rows and columns point into these, so they must not grow while the batch is filled.
  batch.bytes.reserve(std::max(batch_bytes, pending_.size()));
  batch.fields.reserve(batch_rows * table_.columns.size());
  bool more = true;
  while (batch.rows.size() < batch_rows) {
    if (!has_pending_) {
      pending_status_ = reader_.next(pending_);
      more = pending_status_ != row_status::end;
      if (!more) break;
    }
    has_pending_ = batch.bytes.size() + pending_.size() > batch.bytes.capacity();
    if (has_pending_ && batch.rows.empty()) {
      batch.bytes.reserve(pending_.size());
      has_pending_ = false;
    }
    if (has_pending_) break;
    add_row(batch, pending_status_, pending_);
  }
  batch.file_bytes = reader_.bytes_read() - bytes_reported_;
  bytes_reported_ = reader_.bytes_read();
  return more;
}

void row_stream::add_row(row_batch& batch, row_status status, std::string_view row) {
  const std::size_t at = batch.bytes.size();
  batch.bytes.insert(batch.bytes.end(), row.begin(), row.end());
  parsed_row parsed{reader_.line(), {batch.bytes.data() + at, row.size()}, {}, {}, status};
  if (status == row_status::cut) {
    parsed.reason = "the file ends within the row";
  } else if (status == row_status::too_long) {
    parsed.reason = "longer than 16 MiB";
  } else if (row.empty() && table_.end == row_end::marker) {
    // A process without symbols: neither columns nor a reason.
  } else if (parser_.parse(parsed.text)) {
    const std::size_t first = batch.fields.size();
    batch.fields.insert(batch.fields.end(), parser_.fields().begin(), parser_.fields().end());
    parsed.columns = {batch.fields.data() + first, parser_.fields().size()};
  } else {
    parsed.reason = parser_.reason();
  }
  batch.rows.push_back(std::move(parsed));
}

}  // namespace kiv::rows
