#pragma once

#include <array>
#include <string_view>

namespace kiv::clickhouse {

// A list of a profile as a view: its columns, with their places among the numbers (n) and texts (t)
// of an entry.
struct list_columns {
  std::string_view name, columns;
};

inline constexpr std::array<list_columns, 15> profile_lists = {{
    {"trace_loss", "t1 what, n1 count, t2 first"},
    {"trace_note", "t1 note"},
    {"id_name", "n1 number, t1 name, t2 reserve_type"},
    {"color_name", "n1 id, n2 number, t1 name"},
    {"line_name", "t1 name"},
    {"function_name", "t1 object, t2 name"},
    {"call_path", "n1 parent, n2 function"},
    {"process_name", "n1 pid, t1 name"},
    {"query_text", "t1 text"},
    {"histogram", "n1 kind, n2 no_free, n3 id, n4 exponent, n5 blocks, n6 bytes"},
    {"heap_change", "n1 gap, n2 path, n3 process, n4 count, n5 bytes"},
    {"timeline_step", "n1 last_record, t1 time, n2 highest_bytes, n3 last_bytes, n4 heap_bytes"},
    {"timeline_level", "n1 step, n2 place, n3 id, n4 bytes"},
    {"program_mark", "n1 record, t1 time, t2 text, n2 live_bytes, n3 live_blocks"},
    {"mark_level", "n1 mark, n2 place, n3 id, n4 bytes"},
}};

}  // namespace kiv::clickhouse
