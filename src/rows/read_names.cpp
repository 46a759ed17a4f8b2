// Reads the tables that name things, and those of which only sums are wanted.

#include <functional>

#include "rows/trace_names.h"

namespace kiv::rows {
namespace {

// Memory for marks is bounded.
constexpr std::size_t max_marks = 10'000;

class name_tables {
 public:
  name_tables(run_reading& reading, tables_of_run& traces) : reading_(reading), traces_(traces) {}

  bool read_all() {
    return read_runs() && read_ids() && read_colors() && read_lines() && read_processes() &&
           read_queries() && read_operations() && read_functions() && read_arcs() &&
           read_markers() && read_heap();
  }

 private:
  // Calls `each` for every row of a table, with the trace that it belongs to.
  bool read(std::string_view table, auto each) {
    table_rows rows(reading_, table);
    while (rows.next() != nullptr) {
      if (!each(rows, traces_[rows.number(1)])) return false;
    }
    return reading_.error().empty();
  }
  // The same by columns of a table, each given once.
  bool read(std::string_view table, std::initializer_list<std::string_view> names, auto each) {
    table_rows rows(reading_, table);
    std::vector<std::size_t> columns;
    for (const auto& name : names) columns.push_back(rows.column(name));
    while (rows.next() != nullptr) each(rows, columns, traces_[rows.number(1)]);
    return reading_.error().empty();
  }

  static std::uint32_t u32(const table_rows& rows, std::size_t column) {
    return static_cast<std::uint32_t>(rows.number(column));
  }
  static std::uint64_t u64(const table_rows& rows, std::size_t column) {
    return static_cast<std::uint64_t>(rows.number(column));
  }
  static std::string text(const table_rows& rows, std::size_t column) {
    return std::string(rows.text(column));
  }
  static code_place place(const table_rows& rows, std::size_t pid, std::size_t depth,
                          std::size_t object, std::size_t function) {
    return {u32(rows, pid), u32(rows, object), static_cast<std::int32_t>(rows.number(function)),
            rows.number(depth) != 0};
  }

  bool read_runs() {
    return read("runs", [&](const table_rows& rows, trace_tables& trace) {
      if (trace.in_runs) {
        return reading_.fail(rows.place() + ": two traces with the process id " +
                             std::to_string(rows.number(1)) + "; they cannot be told apart");
      }
      trace.in_runs = true;
      profile& p = trace.p;
      p.start = text(rows, 2);
      p.end = text(rows, 3);
      p.program = text(rows, 4);
      p.environment = text(rows, 5);
      p.account = text(rows, 6);
      p.host = text(rows, 7);
      p.user = text(rows, 8);
      p.description = text(rows, 9);
      return true;
    });
  }

  bool read_ids() {
    return read("malid", {"malid", "reserve_type", "category", "description", "reference"},
                [](const table_rows& rows, const auto& c, trace_tables& trace) {
                  trace.names.add_id(u32(rows, c[0]), text(rows, c[1]), rows.text(c[2]),
                                     rows.text(c[3]), rows.text(c[4]));
                });
  }
  bool read_colors() {
    return read("color", {"malid", "color", "color_name"},
                [](const table_rows& rows, const auto& c, trace_tables& trace) {
                  trace.names.add_color(u32(rows, c[0]), u32(rows, c[1]), text(rows, c[2]));
                });
  }
  bool read_lines() {
    return read("hashloc", {"location", "source_line"},
                [](const table_rows& rows, const auto& c, trace_tables& trace) {
                  trace.names.add_line(rows.number(c[0]), text(rows, c[1]));
                });
  }
  // The default process has rows of its own, whose trace is 0.
  bool read_processes() {
    table_rows rows(reading_, "process");
    const auto pid = rows.column("pid"), name = rows.column("session_name");
    while (rows.next() != nullptr) {
      if (rows.number(pid) == 0) continue;
      traces_[rows.number(1)].names.add_process(u32(rows, pid), text(rows, name));
    }
    return reading_.error().empty();
  }
  bool read_queries() {
    return read("queries", {"qid", "query_text"},
                [](const table_rows& rows, const auto& c, trace_tables& trace) {
                  trace.names.add_query(u64(rows, c[0]), text(rows, c[1]));
                });
  }
  bool read_operations() {
    return read("queryevents", {"seq", "qid"},
                [](const table_rows& rows, const auto& c, trace_tables& trace) {
                  trace.names.add_operation(u64(rows, c[0]), u64(rows, c[1]));
                });
  }
  bool read_functions() {
    return read("functions", {"object", "function_number", "object_name", "function_name"},
                [](const table_rows& rows, const auto& c, trace_tables& trace) {
                  trace.names.add_function(0, u32(rows, c[0]),
                                           static_cast<std::int32_t>(rows.number(c[1])),
                                           text(rows, c[2]), text(rows, c[3]));
                });
  }
  bool read_arcs() {
    return read(
        "arcs",
        {"pid", "callee_object", "callee_function", "callee_object_name", "callee_function_name"},
        [](const table_rows& rows, const auto& c, trace_tables& trace) {
          trace.names.add_function(u32(rows, c[0]), u32(rows, c[1]),
                                   static_cast<std::int32_t>(rows.number(c[2])), text(rows, c[3]),
                                   text(rows, c[4]));
        });
  }

  bool read_markers() {
    return read("marker", {"rec", "time", "type", "subtype", "marker_text"},
                [](const table_rows& rows, const auto& c, trace_tables& trace) {
                  const auto record = u64(rows, c[0]);
                  if (rows.text(c[2]) == "Record" && rows.text(c[3]) == "End") {
                    trace.ended = true;
                    trace.end_record = record;
                  } else if (rows.text(c[2]) == "Marker" && trace.marks.size() < max_marks) {
                    trace.marks.push_back({record, text(rows, c[1]), text(rows, c[4])});
                  } else if (rows.text(c[2]) == "Marker" && trace.marks.size() == max_marks) {
                    if (trace.p.notes.empty()) {
                      trace.p.notes.push_back("markers behind the first 10,000 are left out");
                    }
                  }
                });
  }

  bool read_heap() {
    return read("sbrk",
                {"type", "pid", "depth", "callee_object", "callee_function", "addr_or_l_sbrk",
                 "size_or_c_sbrk", "sbrk_total", "gap_total"},
                [this](const table_rows& rows, const auto& c, trace_tables& trace) {
                  const bool gap = rows.text(c[0]) == "G";
                  const std::uint32_t path = trace.names.path(place(rows, c[1], c[2], c[3], c[4]));
                  const std::uint32_t process = trace.names.process(u32(rows, c[1]));
                  const std::uint64_t bytes = u64(rows, c[6]) - (gap ? u64(rows, c[5]) : 0);
                  heap_change& h = heap_of(trace, {gap, path, process});
                  h.count += 1;
                  h.bytes = static_cast<std::int64_t>(static_cast<std::uint64_t>(h.bytes) + bytes);
                  trace.p.heap_bytes = u64(rows, c[7]);
                  trace.p.gap_bytes = rows.number(c[8]);
                });
  }

  using heap_key = std::tuple<bool, std::uint32_t, std::uint32_t>;
  heap_change& heap_of(trace_tables& trace, const heap_key& key) {
    auto& list = trace.p.heap;
    const auto [at, is_new] = heap_places_[&trace].try_emplace(key, list.size());
    if (is_new) list.push_back({std::get<0>(key), std::get<1>(key), std::get<2>(key), 0, 0});
    return list[at->second];
  }

  run_reading& reading_;
  tables_of_run& traces_;
  std::map<const trace_tables*, std::map<heap_key, std::size_t>> heap_places_;
};

}  // namespace

bool read_names(run_reading& reading, tables_of_run& traces) {
  return name_tables(reading, traces).read_all();
}

}  // namespace kiv::rows
