#include "rows/profile_from_rows.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "rows/block_books.h"
#include "rows/record_sequence.h"

namespace kiv::rows {
namespace {

constexpr std::uint64_t max_size = std::numeric_limits<std::uint32_t>::max();

struct memory_columns {
  explicit memory_columns(const table_rows& t)
      : time(t.column("time")),
        type(t.column("type")),
        rec(t.column("rec")),
        pid(t.column("pid")),
        depth(t.column("depth")),
        object(t.column("callee_object")),
        function(t.column("callee_function")),
        query_seq(t.column("query_seq")),
        location(t.column("location")),
        malid(t.column("malid")),
        color(t.column("color")),
        size(t.column("size")),
        tot_size(t.column("tot_size")),
        linked_rec(t.column("linked_rec")),
        wf_size(t.column("global_live_size")),
        nf_size(t.column("global_nf_size")),
        sbrk_total(t.column("sbrk_total")) {}
  std::size_t time, type, rec, pid, depth, object, function, query_seq, location, malid, color,
      size, tot_size, linked_rec, wf_size, nf_size, sbrk_total;
};

// Goes through `memory` and `freemem` side by side.
class row_replay {
 public:
  row_replay(run_reading& reading, tables_of_run& traces)
      : reading_(reading),
        traces_(traces),
        memory_(reading, "memory", table_rows::rejects::fatal),
        ends_(reading, "freemem", table_rows::rejects::fatal),
        column_(memory_) {}

  bool all() {
    next_end();
    while (memory_.next() != nullptr) {
      if (!take_row()) return false;
    }
    if (!reading_.error().empty() || !end_trace()) return false;
    if (has_end_) return fail_end("ends a block at a record that `memory` does not have");
    return reading_.error().empty();
  }

 private:
  std::uint64_t number(std::size_t column) const {
    return static_cast<std::uint64_t>(memory_.number(column));
  }
  bool fail(const std::string& what) { return reading_.fail(memory_.place() + ": " + what); }
  bool fail_end(const std::string& what) { return reading_.fail(ends_.place() + ": " + what); }

  void next_end() { has_end_ = ends_.next() != nullptr; }
  bool end_is_at(std::uint64_t record) const {
    return has_end_ && ends_.number(1) == sequence_.main_pid() &&
           static_cast<std::uint64_t>(ends_.number(3)) == record;
  }

  bool take_row() {
    const char type = memory_.text(column_.type)[0];
    const std::uint64_t record = number(column_.rec), linked = number(column_.linked_rec);
    const bool finds_no_block = type == 'r' && linked == 0;
    std::string reason;
    const std::int64_t main_pid = memory_.number(1);
    if (books_ && main_pid != sequence_.main_pid() && !end_trace()) return false;
    if (!sequence_.accept(main_pid, record, finds_no_block, reason)) return fail(reason);
    if (sequence_.is_new_trace()) begin_trace(main_pid);
    if (finds_no_block) {
      ++resizes_without_block_;
      return true;
    }
    // The analyser keeps sizes in 32 bits; larger ones would make sums overflow.
    if ((type == 'a' || type == 'n' || type == 'r') &&
        (number(column_.size) > max_size || number(column_.tot_size) > max_size)) {
      return fail("a block of " + std::to_string(number(column_.size)) + " bytes");
    }
    books_->begin_record(record);
    if (!take_ends(type, record, linked)) return false;
    if (type == 'a' || type == 'n') books_->make(block_of(record, type == 'n'));
    books_->end_record(record, memory_.text(column_.time), number(column_.sbrk_total));
    rows_say_live_ = number(column_.wf_size) + number(column_.nf_size);
    return true;
  }

  block_row block_of(std::uint64_t record, bool no_free) const {
    block_row row;
    row.record = record;
    row.no_free = no_free;
    row.id_number = static_cast<std::uint32_t>(number(column_.malid));
    row.color = static_cast<std::uint32_t>(number(column_.color));
    row.location = memory_.number(column_.location);
    row.at.pid = static_cast<std::uint32_t>(number(column_.pid));
    row.at.object = static_cast<std::uint32_t>(number(column_.object));
    row.at.function = static_cast<std::int32_t>(memory_.number(column_.function));
    row.at.in_function = number(column_.depth) != 0;
    row.query_seq = number(column_.query_seq);
    row.size = number(column_.size);
    row.tot_size = number(column_.tot_size);
    return row;
  }

  // The rows of `freemem` that belong to the record.
  bool take_ends(char type, std::uint64_t record, std::uint64_t linked) {
    bool found_linked = false;
    for (; end_is_at(record); next_end()) {
      const auto made_by = static_cast<std::uint64_t>(ends_.number(2));
      const char how = ends_.text(4)[0];
      if (how != type || how == 'a' || how == 'n') {
        return fail_end(std::string("type ") + how + ", but record " + std::to_string(record) +
                        " is of type " + type);
      }
      const bool was_live = how == 'r' ? books_->resize(made_by, block_of(record, false))
                                       : books_->end(made_by, record, how);
      if (!was_live) {
        return fail_end("ends record " + std::to_string(made_by) + ", of which no block is live");
      }
      found_linked = found_linked || made_by == linked;
    }
    if (!reading_.error().empty()) return false;
    if ((type == 'f' || type == 'r') && linked != 0 && !found_linked) {
      return fail("record " + std::to_string(record) + " ends record " + std::to_string(linked) +
                  ", but `freemem` has no row for it; its files are not whole");
    }
    frees_without_block_ += type == 'f' && linked == 0;
    return true;
  }

  void begin_trace(std::int64_t main_pid) {
    trace_ = &traces_[main_pid];
    books_.emplace(*trace_);
    frees_without_block_ = resizes_without_block_ = rows_say_live_ = 0;
  }

  bool end_trace() {
    if (!books_) return true;
    books_->finish();
    profile& p = trace_->p;
    const auto lose = [&](const char* what, std::uint64_t count) {
      if (count > 0) p.losses.push_back({what, count, ""});
    };
    lose("frees that found no block", frees_without_block_);
    lose("resizes that found no block", resizes_without_block_);
    lose("bytes by which live memory in the rows differs from the blocks",
         std::max(rows_say_live_, books_->live().bytes) -
             std::min(rows_say_live_, books_->live().bytes));
    books_.reset();
    return true;
  }

  run_reading& reading_;
  tables_of_run& traces_;
  table_rows memory_, ends_;
  memory_columns column_;
  record_sequence sequence_;
  bool has_end_ = false;
  trace_tables* trace_ = nullptr;
  std::optional<block_books> books_;
  std::uint64_t frees_without_block_ = 0, resizes_without_block_ = 0, rows_say_live_ = 0;
};

// What the tables say about their own end.
bool check_end(run_reading& reading, std::int64_t pid, trace_tables& trace) {
  profile& p = trace.p;
  if (trace.ended && trace.end_record != p.records) {
    return reading.fail("the table `memory` of the trace with the process id " +
                        std::to_string(pid) + " has " + std::to_string(p.records) +
                        " records, but `marker` says " + std::to_string(trace.end_record));
  }
  if (!trace.ended)
    p.losses.push_back({"the analysis did not come to the end of the trace", 1, ""});
  if (!trace.in_runs) p.losses.push_back({"no row in the table `runs`", 1, ""});
  return true;
}

// The tables that say nothing for a profile.
bool check_other_tables(run_reading& reading) {
  constexpr std::string_view others[] = {"arena", "symbols", "flowdata", "flow", "objects"};
  for (const auto& file : reading.run().files) {
    if (std::ranges::find(others, file.table->name) == std::end(others)) continue;
    if (ends_with_row_end(file.path, file.table->end)) continue;
    return reading.fail(file.path + ": the file ends within a row");
  }
  return true;
}

}  // namespace

bool profile_from_rows(const run_plan& run, const row_options& options, run_profile& into,
                       std::vector<std::string>& rejected, std::string& error) {
  run_reading reading(run, options);
  tables_of_run traces;
  bool done = reading.begin() && check_other_tables(reading) && read_names(reading, traces) &&
              row_replay(reading, traces).all();
  into.traces.clear();
  for (auto& [pid, trace] : traces) {
    done = done && check_end(reading, pid, trace);
    if (!done) break;
    profile& p = trace.p;
    p.run = reading.run_id();
    p.pid = pid;
    p.from_rows = true;
    p.notes.insert(p.notes.begin(),
                   "computed from CSV tables: of each call path only the innermost function is "
                   "known, and of what the trace lacks only some");
    into.traces.push_back(std::move(p));
  }
  into.name = reading.run_id();
  rejected = reading.rejected();
  error = reading.error();
  return done;
}

}  // namespace kiv::rows
