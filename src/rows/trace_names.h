#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "profile/profile.h"
#include "rows/run_reading.h"

namespace kiv::rows {

// Where a record happened, as the rows of four tables say it.
struct code_place {
  std::uint32_t pid = 0;
  std::uint32_t object = 0;  // of the innermost function
  std::int32_t function = 0;
  bool in_function = false;  // the stack was not empty
};

// The lists of names of one trace, and the numbers under which rows refer to them. Names that are
// equal are one entry.
class trace_names {
 public:
  explicit trace_names(profile& p);

  void add_id(std::uint32_t number, const std::string& reserve_type, std::string_view category,
              std::string_view description, std::string_view reference);
  void add_color(std::uint32_t id_number, std::uint32_t color, const std::string& name);
  void add_line(std::int64_t location, const std::string& text);
  void add_process(std::uint32_t pid, const std::string& name);
  void add_query(std::uint64_t qid, const std::string& text);
  void add_operation(std::uint64_t seq, std::uint64_t qid);
  // A function of a process; pid 0 stands for all processes.
  void add_function(std::uint32_t pid, std::uint32_t object, std::int32_t number,
                    const std::string& object_name, const std::string& name);

  // Places in the lists; 0 for what nobody named.
  std::uint32_t id(std::uint32_t number) const { return find(ids_, number); }
  std::uint32_t color(std::uint32_t id_number, std::uint32_t color) const;
  std::uint32_t line(std::int64_t location) const { return find(lines_, location); }
  std::uint32_t query(std::uint64_t seq) const;
  // These make an entry for what nobody named.
  std::uint32_t process(std::uint32_t pid);
  std::uint32_t path(const code_place& at);

 private:
  using function_key = std::tuple<std::uint32_t, std::uint32_t, std::int32_t>;

  template <class Map, class Key>
  static std::uint32_t find(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? 0 : found->second;
  }
  std::uint32_t function_place(const std::string& object, const std::string& name);
  std::uint32_t function_of(const code_place& at);

  profile& p_;
  absl::flat_hash_map<std::string, std::uint32_t> id_names_, line_names_, query_texts_;
  absl::flat_hash_map<std::pair<std::uint32_t, std::string>, std::uint32_t> color_names_;
  absl::flat_hash_map<std::pair<std::string, std::string>, std::uint32_t> function_names_;
  absl::flat_hash_map<std::uint32_t, std::uint32_t> ids_, processes_;
  absl::flat_hash_map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> colors_;
  absl::flat_hash_map<std::int64_t, std::uint32_t> lines_;
  absl::flat_hash_map<std::uint64_t, std::uint32_t> queries_;     // by qid
  absl::flat_hash_map<std::uint64_t, std::uint64_t> operations_;  // seq: qid
  absl::flat_hash_map<function_key, std::uint32_t> functions_, paths_;
  absl::flat_hash_map<std::uint32_t, std::uint32_t> path_of_function_;
};

// A marker of the program, of which the records are not read yet.
struct row_mark {
  std::uint64_t record;
  std::string time, text;
};

// What the tables besides `memory` and `freemem` say about one trace.
struct trace_tables {
  trace_tables() : names(p) {}
  trace_tables(const trace_tables&) = delete;
  trace_tables& operator=(const trace_tables&) = delete;

  profile p;
  trace_names names;
  std::vector<row_mark> marks;
  bool in_runs = false;
  bool ended = false;  // the replay wrote its last marker
  std::uint64_t end_record = 0;
};

// Traces by their process id.
using tables_of_run = std::map<std::int64_t, trace_tables>;

// Reads them. False, with the reading's error set, when a file has a fault or a trace is there
// twice.
bool read_names(run_reading& reading, tables_of_run& traces);

}  // namespace kiv::rows
