#include "rows/run_reading.h"

#include <algorithm>
#include <span>
#include <utility>

#include "tables/csv_names.h"
#include "util/printable.h"

namespace kiv::rows {
namespace {

// Tables to read the separators off, the surest first.
constexpr std::string_view for_data_separator[] = {"runs", "memory", "marker",
                                                   "sbrk", "arena",  "queryevents"};
constexpr std::string_view for_fun_separator[] = {"memory", "sbrk", "arena", "queryevents"};

constexpr std::uint64_t named_rejects = 3;  // per file

// Calls `detect_in` with the first row of the first file that has one, of each table in turn.
template <typename Detect>
std::optional<char> detect(const run_plan& run, std::span<const std::string_view> tables,
                           Detect detect_in) {
  for (const auto& table : tables) {
    for (const auto& file : run.files) {
      if (file.table->name != table || file.size == 0) continue;
      csv_reader reader(file.path, file.table->end);
      std::string_view row;
      if (reader.next(row) != row_status::row) continue;
      if (const auto found = detect_in(row, *file.table)) return found;
    }
  }
  return std::nullopt;
}

}  // namespace

bool run_reading::fail(std::string what) {
  if (error_.empty()) error_ = std::move(what);
  return false;
}

bool run_reading::begin() {
  seps_.data = options_.data_separator.value_or(
      detect(run_, for_data_separator, [](std::string_view row, const csv_table&) {
        return detect_data_separator(row);
      }).value_or(';'));
  const auto fun =
      detect(run_, for_fun_separator, [&](std::string_view row, const csv_table& table) {
        return detect_fun_separator(row, table, seps_.data);
      });
  seps_.fun = options_.fun_separator.value_or(fun.value_or(seps_.data));
  if (usable_separator(seps_.data) && usable_separator(seps_.fun)) return true;
  return fail("a digit as separator cannot be told from the numbers around it");
}

// File names cannot tell all run ids apart.
bool run_reading::accepts(std::string_view run_id, std::string& reason) {
  if (run_id == run_id_) return true;
  if (safe_runid(run_id) != run_.run_id) {
    reason = "run id " + quoted_name(run_id.substr(0, 40)) + " in a file of another run";
    return false;
  }
  if (run_id_.empty()) {
    run_id_ = run_id;
    return true;
  }
  reason = "rows of the runs " + quoted_name(run_id_) + " and " + quoted_name(run_id) +
           " stand in the same files";
  return fail(reason);
}

table_rows::table_rows(run_reading& reading, std::string_view table, rejects how)
    : reading_(reading), table_(*find_csv_table(table)), how_(how) {}

std::size_t table_rows::column(std::string_view name) const {
  const auto found = std::ranges::find(table_.columns, name, &csv_column::name);
  return static_cast<std::size_t>(found - table_.columns.begin());
}

std::string table_rows::place() const {
  if (file_ == nullptr) return std::string(table_.name);
  return file_->path + (row_ != nullptr ? ", line " + std::to_string(row_->line) : std::string());
}

const parsed_row* table_rows::next() {
  while (reading_.error_.empty()) {
    if (at_ == batch_.rows.size()) {
      row_ = nullptr;
      if (!next_batch()) return nullptr;
      continue;
    }
    row_ = &batch_.rows[at_++];
    if (take(*row_)) {
      ++count_;
      return row_;
    }
  }
  return nullptr;
}

bool table_rows::next_batch() {
  at_ = 0;
  for (;;) {
    if (!stream_ && !open_next_file()) return false;
    if (stream_->next(batch_)) {
      if (reading_.options_.progress) {
        reading_.options_.progress(batch_.file_bytes, batch_.rows.size());
      }
      return true;
    }
    batch_.rows.clear();
    end_file();
    if (!reading_.error_.empty()) return false;
  }
}

bool table_rows::open_next_file() {
  const auto& files = reading_.run_.files;
  while (next_file_ < files.size() && files[next_file_].table != &table_) ++next_file_;
  if (next_file_ == files.size()) return false;
  file_ = &files[next_file_++];
  stream_ = std::make_unique<row_stream>(file_->path, table_, reading_.seps_);
  return stream_->is_open() || reading_.fail(file_->path + ": cannot be opened");
}

void table_rows::end_file() {
  if (stream_->failed()) reading_.fail(file_->path + ": cannot be read");
  if (rejected_ > named_rejects) {
    rejected_lines_ += "; and " + std::to_string(rejected_ - named_rejects) + " more";
  }
  if (rejected_ > 0) {
    reading_.rejected_.push_back(file_->path + ": rows that cannot be read: " + rejected_lines_);
  }
  rejected_ = 0;
  rejected_lines_.clear();
  stream_.reset();
}

bool table_rows::take(const parsed_row& row) {
  if (row.status == row_status::cut) {
    return reading_.fail(place() + ": the file ends within a row");
  }
  std::string reason = row.reason;
  if (reason.empty()) {
    if (row.columns.empty()) return false;  // of a process without symbols
    if (reading_.accepts(row.columns[0].text, reason)) return true;
  }
  reject(row, reason);
  return false;
}

void table_rows::reject(const parsed_row& row, const std::string& reason) {
  if (how_ == rejects::fatal) {
    reading_.fail(place() + ": " + reason);
    return;
  }
  if (++rejected_ > named_rejects) return;
  rejected_lines_ +=
      (rejected_ > 1 ? "; line " : "line ") + std::to_string(row.line) + ": " + reason;
}

}  // namespace kiv::rows
