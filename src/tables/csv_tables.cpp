#include "tables/csv_tables.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kiv {
namespace {

using enum column_type;
using enum column_unit;

template <std::size_t... Sizes>
consteval auto join(const std::array<csv_column, Sizes>&... parts) {
  std::array<csv_column, (Sizes + ...)> all{};
  auto* out = all.data();
  ((out = std::copy(parts.begin(), parts.end(), out)), ...);
  return all;
}

template <std::size_t Size>
consteval std::array<csv_column, Size> columns(const csv_column (&list)[Size]) {
  return std::to_array(list);
}

// clang-format off

// The call context in force when a measurement event was read. Part of four tables.
constexpr auto context = columns({
  {"pid",                   u64,  id,    "Process that was running; 0 for the default process, whose context is all zeros"},
  {"arc",                   u64,  id,    "Arc on top of the process's call stack"},
  {"flow",                  u64,  count, "Function entries and exits of the process so far"},
  {"depth",                 u64,  count, "Entries on the process's call stack"},
  {"caller_object",         u64,  id,    "Object of the arc's caller", {}, true},
  {"caller_function",       i64,  id,    "Function number of the arc's caller"},
  {"callee_object",         u64,  id,    "Object of the arc's callee", {}, true},
  {"callee_function",       i64,  id,    "Function number of the arc's callee"},
  {"hosk_call",             text, none,  "Current Hosk function, empty outside the interpreter"},
  {"hosk_symbol",           i64,  id,    "Symbol number of the current Hosk call"},
  {"hosk_args",             free_text, none,  "Arguments of the current Hosk call"},
  {"query_seq",             u64,  id,    "Open SQL operation, as `seq` of `queryevents`; 0 when none is open"},
});

constexpr auto memory_event = columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace"},
  {"time",                  time, none,   "Time of the last time stamp before the record"},
  {"type",                  character, none, "a with-free allocation, n no-free allocation, f free, r resize in place, F id freed, Z id reset"},
  {"rec",                   u64,  record, "Memory records booked so far, this one included; a resize that finds no block is not booked"},
  {"rec_thousands",         u64,  none,   "rec / 1000"},
});

constexpr auto memory_block = columns({
  {"location",              i64,  id,      "Source location, key into `hashloc`"},
  {"malid",                 u64,  id,      "Allocation id of the record, key into `malid`"},
  {"color",                 u64,  id,      "Colour number within the id, key into `color`; 0 for F and Z"},
  {"addr",                  i64,  address, "Block; 0 for F and Z"},
  {"size_change",           i64,  bytes,   "Change of the live size that the record asks for"},
  {"tot_size_change",       i64,  bytes,   "The same with the allocator's rounding"},
  {"size",                  u64,  bytes,   "Size of the block (new size for r; all live blocks of the id for F and Z)"},
  {"tot_size",              u64,  bytes,   "The same with the allocator's rounding"},
  {"addr2",                 i64,  address, "a: block that the program reallocated, r: block that was freed, else 0"},
  {"linked_rec",            u64,  record,  "a: record of the reallocated block, f: of the freed block, r: previous record of the block, else 0"},
});

constexpr auto memory_totals = columns({
  {"color_label",           text, none,  "Label", "color"},
  {"color_live_size",       u64,  bytes, "Live with-free memory of the id's colour"},
  {"color_live_tot_size",   u64,  bytes, "The same with rounding"},
  {"color_live_count",      u64,  count, "Live with-free blocks of the id's colour"},
  {"color_peak_size",       u64,  bytes, "Highest color_live_size so far"},
  {"color_peak_tot_size",   u64,  bytes, "Highest color_live_tot_size so far"},
  {"color_mem_size",        u64,  bytes, "Live memory of both kinds of the id's colour"},
  {"color_mem_tot_size",    u64,  bytes, "The same with rounding"},
  {"color_rec",             u64,  count, "Memory records of the id's colour"},
  {"color_rec_tens",        u64,  none,  "color_rec / 10"},

  {"malid_label",           text, none,  "Label", "malid"},
  {"malid_live_size",       u64,  bytes, "Live with-free memory of the id"},
  {"malid_live_tot_size",   u64,  bytes, "The same with rounding"},
  {"malid_live_count",      u64,  count, "Live with-free blocks of the id"},
  {"malid_peak_size",       u64,  bytes, "Highest malid_live_size so far"},
  {"malid_peak_tot_size",   u64,  bytes, "Highest malid_live_tot_size so far"},
  {"malid_mem_size",        u64,  bytes, "Live memory of both kinds of the id"},
  {"malid_mem_tot_size",    u64,  bytes, "The same with rounding"},
  {"malid_rec",             u64,  count, "Memory records of the id"},
  {"malid_rec_hundreds",    u64,  none,  "malid_rec / 100"},
  {"malid_sum_size",        u64,  bytes, "All with-free allocations of the id so far"},
  {"malid_sum_tot_size",    u64,  bytes, "The same with rounding"},
  {"malid_sum_count",       u64,  count, "Number of them"},

  {"process_label",         text, none,  "Label", "process"},
  {"process_live_size",     i64,  bytes, "Live with-free memory of the process"},
  {"process_live_tot_size", i64,  bytes, "The same with rounding"},
  {"process_live_count",    i64,  count, "Live with-free blocks of the process"},
  {"process_peak_size",     i64,  bytes, "Highest process_live_size so far"},
  {"process_peak_tot_size", i64,  bytes, "Highest process_live_tot_size so far"},
  {"process_mem_size",      i64,  bytes, "Live memory of both kinds of the process"},
  {"process_mem_tot_size",  i64,  bytes, "The same with rounding"},
  {"process_rec",           i64,  count, "Memory records of the process"},
  {"process_rec_hundreds",  i64,  none,  "process_rec / 100"},
  {"process_sum_size",      i64,  bytes, "All with-free allocations of the process so far"},
  {"process_sum_tot_size",  i64,  bytes, "The same with rounding"},
  {"process_sum_count",     i64,  count, "Number of them"},

  {"process_malid_label",         text, none,  "Label", "process m"},
  {"process_malid_live_size",     i64,  bytes, "Live with-free memory of the id in this process"},
  {"process_malid_live_tot_size", i64,  bytes, "The same with rounding"},
  {"process_malid_live_count",    i64,  count, "Live with-free blocks of the id in this process"},
  {"process_malid_mem_size",      i64,  bytes, "Live memory of both kinds of the id in this process"},
  {"process_malid_mem_tot_size",  i64,  bytes, "The same with rounding"},
  {"process_malid_rec",           i64,  count, "Memory records of the id in this process"},
  {"process_malid_rec_hundreds",  i64,  none,  "process_malid_rec / 100"},

  {"process_color_label",         text, none,  "Label", "process c"},
  {"process_color_live_size",     i64,  bytes, "Live with-free memory of the colour in this process (32 bits)"},
  {"process_color_live_tot_size", i64,  bytes, "The same with rounding"},
  {"process_color_live_count",    i64,  count, "Allocations of the colour in this process; frees do not lower it"},
  {"process_color_mem_size",      i64,  bytes, "Live memory of both kinds of the colour in this process"},
  {"process_color_mem_tot_size",  i64,  bytes, "The same with rounding"},
  {"process_color_rec",           i64,  count, "Memory records of the colour in this process"},
  {"process_color_rec_tens",      i64,  none,  "process_color_rec / 10"},

  {"global_label",          text, none,  "Label", "global"},
  {"global_live_size",      u64,  bytes, "Live with-free memory of the whole trace"},
  {"global_live_tot_size",  u64,  bytes, "The same with rounding"},
  {"global_live_count",     u64,  count, "Live with-free blocks of the whole trace"},
  {"global_peak_size",      u64,  bytes, "Highest global_live_size so far"},
  {"global_peak_tot_size",  u64,  bytes, "Highest global_live_tot_size so far"},
  {"global_nf_size",        u64,  bytes, "Live no-free memory of the whole trace"},
  {"global_nf_tot_size",    u64,  bytes, "The same with rounding"},
  {"global_nf_count",       u64,  count, "No-free allocations of the whole trace"},

  {"sbrk_label",            text, none,  "Label", "sbrk"},
  {"sbrk_total",            u64,  bytes, "Heap growth so far"},
  {"sbrk_count",            u64,  count, "Heap growth records so far"},
  {"gap_total",             u64,  bytes, "Heap gaps so far"},
  {"gap_count",             u64,  count, "Heap gap records so far"},
});

constexpr auto memory = join(memory_event, context, memory_block, memory_totals);

constexpr auto sbrk = join(columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace"},
  {"time",                  time, none,   "Time of the last time stamp before the record"},
  {"record",                u64,  record, "Record counter of the run"},
  {"type",                  character, none, "S heap growth, G heap gap"},
  {"sbrk_row",              u64,  id,     "Number of the row in this table, from 0 across the run"},
  {"record_again",          u64,  record, "Equals record"},
}), context, columns({
  {"addr_or_l_sbrk",        i64,  address, "S: start of the new piece, G: end of the heap that was expected"},
  {"size_or_c_sbrk",        i64,  none,    "S: bytes gained, G: address at which the heap went on"},
  {"sbrk_total",            u64,  bytes,   "Heap growth so far, this record included"},
  {"sbrk_count",            u64,  count,   "Heap growth records so far"},
  {"gap_total",             u64,  bytes,   "Heap gaps so far, this record included"},
  {"gap_count",             u64,  count,   "Heap gap records so far"},
}));

constexpr auto queryevents = join(columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace"},
  {"seq",                   u64,  id,     "Number of the SQL operation within the trace, from 1"},
  {"time",                  time, none,   "Time at which the operation ended"},
  {"qid",                   u64,  id,     "Query, key into `queries`"},
  {"linked_qid",            u64,  id,     "Query that this one belongs to; the query itself when it stands alone"},
  {"type",                  character, none, "Kind of operation, a letter of the traced runtime: p, b, c, e, f, s"},
  {"start_sbrk_rows",       u64,  count,  "Rows of `sbrk` at entry; both 0 when none was written meanwhile"},
  {"end_sbrk_rows",         u64,  count,  "Rows of `sbrk` at exit"},
  {"start_rec",             u64,  record, "Memory record number at entry; both 0 when there was none meanwhile"},
  {"end_rec",               u64,  record, "Memory record number at exit"},
}), context);

constexpr auto marker = columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace"},
  {"marker",                u64,  id,     "Number of the marker, from 0 across the run"},
  {"rec",                   u64,  record, "Memory record number when the marker was written"},
  {"last_rec",              u64,  record, "Memory record number at the marker before"},
  {"time",                  time, none,   "Time of the last time stamp"},
  {"type",                  text, none,   "Record, Process, Malid, MalId or Marker (a marker of the program itself)"},
  {"subtype",               text, none,   "What happened: Begin, End, recs, Start, Reserve, Free, Reset or empty"},
  {"marker_text",           free_text, none,   "Text of the marker, at most 255 bytes"},
});

constexpr auto freemem = columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace"},
  {"alloc_rec",             u64,  record, "Memory record that made the block (or last resized it)"},
  {"free_rec",              u64,  record, "Memory record that ended it"},
  {"type",                  character, none, "f freed, r resized in place, F its id was freed, Z its id was reset"},
});

constexpr auto arena = join(columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace"},
  {"time",                  time, none,   "Time of the last time stamp before the record"},
  {"record",                u64,  record, "Record counter of the run"},
  {"arena_row",             u64,  id,     "Number of the row in this table, from 0 across the run"},
}), context, columns({
  {"arena",                 u64,  bytes,  "Size of the native allocator's arena"},
  {"used",                  u64,  bytes,  "Bytes of it in use"},
  {"freed",                 u64,  bytes,  "Bytes of it free"},
}));

constexpr auto arcs = columns({
  {"run_id",                text, none, "Run id of the trace"},
  {"main_pid",              i64,  id,   "Process id of the trace"},
  {"pid",                   u64,  id,   "Process that made the call"},
  {"arc",                   u64,  id,   "Number of the arc within the process; 0 is the root calling itself"},
  {"caller_object_name",    text, none, "Object of the caller"},
  {"caller_object",         u64,  id,   "Object id of the caller; the pid for functions of the process itself"},
  {"caller_function",       i64,  id,   "Function number of the caller"},
  {"caller_function_name",  free_text, none, "Function name of the caller"},
  {"callee_object_name",    text, none, "Object of the callee"},
  {"callee_object",         u64,  id,   "Object id of the callee; the pid for functions of the process itself"},
  {"callee_function",       i64,  id,   "Function number of the callee"},
  {"callee_function_name",  free_text, none, "Function name of the callee"},
});

constexpr auto symbols = columns({
  {"run_id",                text, none,  "Run id of the trace"},
  {"main_pid",              i64,  id,    "Process id of the trace"},
  {"pid",                   u64,  id,    "Process that owns the symbol"},
  {"flow",                  u64,  count, "Flow counter of the process when the symbol got its storage"},
  {"ordinal",               u64,  id,    "Number of the row within the process, from 0"},
  {"sym",                   i64,  id,    "Symbol number of the trace"},
  {"size",                  u64,  bytes, "Storage of the symbol"},
  {"category",              text, none,  "arg, loc, ext, glob or dyn, padded to four characters; empty when unknown"},
  {"flags",                 u64,  none,  "Flag bits of the symbol"},
  {"declaration",           free_text, none,  "Attributes, type, name and dimensions in readable form"},
});

constexpr auto flowdata = columns({
  {"run_id",                text, none,  "Run id of the trace"},
  {"main_pid",              i64,  id,    "Process id of the trace"},
  {"pid",                   u64,  id,    "Process that owns the symbols"},
  {"flow",                  u64,  count, "Flow counter that the symbols of the group share"},
  {"ordinal",               u64,  id,    "Number of the group within the process, from 0"},
  {"group_size",            u64,  bytes, "Storage of all symbols with this flow counter"},
  {"group_count",           u64,  count, "Number of symbols with this flow counter"},
  {"symbol_lines",          free_text, none,  "One line per symbol: category, ':', declaration, line end"},
});

constexpr auto flow = columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace"},
  {"pid",                   u64,  id,     "Process that ran"},
  {"flow",                  u64,  count,  "Flow counter of the process, this entry or exit included"},
  {"depth",                 u64,  count,  "Call stack depth, after an entry and before an exit"},
  {"record",                u64,  record, "Record counter of the run + 1"},
  {"arc",                   u64,  id,     "Arc that is entered or left, key into `arcs`"},
  {"direction",             character, none, "> entry, < exit"},
});

constexpr auto process = columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace; 0 in the row of the default process"},
  {"pid",                   u64,  id,     "Process"},
  {"session_name",          text, none,   "Name of the process up to its first blank"},
  {"malid",                 u64,  id,     "Allocation id that was reserved for the process, 0 when none was"},
  {"xmlid",                 u64,  id,     "Allocation id of its XML memory, 0 when none was reserved"},
  {"parent",                u64,  id,     "Process that started it"},
  {"start_time",            time, none,   "Time of its start"},
  {"end_time",              time, none,   "Time of its end, or of the end of the measurement"},
  {"start_record",          u64,  record, "Record counter of the run at its start"},
  {"end_record",            u64,  record, "Record counter of the run at its end"},
});

constexpr auto hashloc = columns({
  {"run_id",                text, none, "Run id of the trace"},
  {"main_pid",              i64,  id,   "Process id of the trace"},
  {"location",              i64,  id,   "Source location"},
  {"source_line",           free_text, none, "File and line, or module and offset"},
});

constexpr auto malid = columns({
  {"run_id",                text, none,   "Run id of the trace"},
  {"main_pid",              i64,  id,     "Process id of the trace"},
  {"malid",                 u64,  id,     "Allocation id"},
  {"location",              i64,  id,     "Source location of the reservation, key into `hashloc`"},
  {"reserve_type",          free_text, none,   "Text of the reservation"},
  {"category",              text, none,   "proc, dlock, xml, oic, qdb, sql stmt, dbsession or general (10 bytes at most)"},
  {"description",           free_text, none, "Part of the reservation text that names the owner (300 bytes at most)"},
  {"reference",             text, none,   "Part of the reservation text that numbers the owner (200 bytes at most)"},
  {"default_size",          u64,  bytes,  "Default size of the id"},
  {"start_time",            time, none,   "Time of the reservation"},
  {"end_time",              time, none,   "Time of the free, or of the end of the replay"},
  {"start_record",          u64,  record, "Record counter of the run at the reservation"},
  {"end_record",            u64,  record, "Record counter of the run at the free or the end"},
});

constexpr auto color = columns({
  {"run_id",                text, none, "Run id of the trace"},
  {"main_pid",              i64,  id,   "Process id of the trace"},
  {"malid",                 u64,  id,   "Allocation id"},
  {"color",                 u64,  id,   "Colour number within the id"},
  {"color_name",            free_text, none, "Name of the colour, \"Bad Color\" when it was never named"},
});

constexpr auto queries = columns({
  {"run_id",                text, none, "Run id of the trace"},
  {"main_pid",              i64,  id,   "Process id of the trace"},
  {"pid",                   u64,  id,   "Process that prepared the query"},
  {"qid",                   u64,  id,   "Query"},
  {"linked_qid",            u64,  id,   "Query that this one belongs to; the query itself when it stands alone"},
  {"start_time",            time, none, "Time at which it was prepared"},
  {"first_use_time",        time, none, "Time of its first use, or of the end of the measurement"},
  {"last_use_time",         time, none, "Time of its last use, or of the end of the measurement"},
  {"query_text",            free_text, none, "Statement; may hold separators and line ends"},
});

constexpr auto runs = columns({
  {"run_id",                text, none,  "Run id of the trace"},
  {"main_pid",              i64,  id,    "Process id of the trace"},
  {"start_time",            time, none,  "Start of the measurement"},
  {"end_time",              time, none,  "End of the measurement"},
  {"program",               text, none,  "Traced program"},
  {"environment",           text, none,  "Runtime environment"},
  {"account",               text, none,  "Account of the user"},
  {"host",                  text, none,  "Machine"},
  {"user_name",             text, none,  "User"},
  {"description",           free_text, none, "Text given with -T when the trace was analysed"},
  {"m_entry_size",          i64,  bytes, "Bookkeeping of the traced allocator per block"},
  {"mem_block_size",        i64,  bytes, "Bookkeeping of the traced allocator per memory block"},
  {"m_group_size",          i64,  bytes, "Bookkeeping of the traced allocator per group"},
});

constexpr auto objects = columns({
  {"run_id",                text, none, "Run id of the trace"},
  {"main_pid",              i64,  id,   "Process id of the trace"},
  {"object",                u64,  id,   "Object id; 0 in the row for no object"},
  {"object_name",           free_text, none, "Name of the object"},
});

constexpr auto functions = columns({
  {"run_id",                text, none, "Run id of the trace"},
  {"main_pid",              i64,  id,   "Process id of the trace"},
  {"object_name",           text, none, "Name of the object"},
  {"object",                u64,  id,   "Object id, key into `objects`"},
  {"function_number",       i64,  id,   "Function number within the object; 0 is its top level"},
  {"function_name",         free_text, none, "Name of the function"},
});

constexpr auto reader = table_created::with_reader;
constexpr auto at_end = table_created::at_end;
constexpr auto line   = row_end::line;
constexpr auto marked = row_end::marker;

constexpr csv_table tables[] = {
  // id, name, created, split, row end, a row is
  {table_id::memory, "memory",      reader,  true,  line,   "A memory record, with the totals of every book it reached", memory},
  {table_id::sbrk, "sbrk",        reader,  false, line,   "Growth of the heap or a gap in it", sbrk},
  {table_id::queryevents, "queryevents", reader,  true,  line,   "An SQL operation from entry to exit", queryevents},
  {table_id::marker, "marker",      reader,  false, line,   "A marker: of the program, or of an event worth finding again", marker},
  {table_id::freemem, "freemem",     reader,  true,  line,   "The end of a block: which record made it, which one ended it", freemem},
  {table_id::arena, "arena",       reader,  false, line,   "Figures of the native allocator", arena},
  {table_id::arcs, "arcs",        reader,  false, line,   "A caller and callee pair of a process that ended", arcs},
  {table_id::symbols, "symbols",     reader,  false, line,   "A symbol of a process that ended", symbols},
  {table_id::flowdata, "flowdata",    reader,  false, marked, "Symbols of a process that share a flow counter; a row without any field for a process without symbols", flowdata},
  {table_id::flow, "flow",        reader,  false, line,   "A function entry or exit", flow},
  {table_id::process, "process",     at_end,  false, line,   "A process", process},
  {table_id::hashloc, "hashloc",     at_end,  false, line,   "A source location", hashloc},
  {table_id::malid, "malid",       at_end,  false, line,   "An allocation id", malid},
  {table_id::color, "color",       at_end,  false, line,   "A colour of an allocation id", color},
  {table_id::queries, "queries",     at_end,  false, marked, "An SQL statement", queries},
  {table_id::runs, "runs",        at_end,  false, line,   "A trace that was analysed", runs},
  {table_id::objects, "objects",     at_end,  false, line,   "A loaded object", objects},
  {table_id::functions, "functions",   at_end,  false, line,   "A function of a loaded object", functions},
};
// clang-format on

consteval bool names_are_unique() {
  for (const auto& table : tables) {
    if (std::ranges::count(tables, table.name, &csv_table::name) != 1) return false;
    for (const auto& column : table.columns) {
      if (std::ranges::count(table.columns, column.name, &csv_column::name) != 1) return false;
    }
  }
  return true;
}
static_assert(names_are_unique());
consteval bool ids_are_places() {
  for (std::size_t place = 0; place < std::size(tables); ++place) {
    if (static_cast<std::size_t>(tables[place].id) != place) return false;
  }
  return std::size(tables) == table_count;
}
static_assert(ids_are_places());
static_assert(memory.size() == 94);

}  // namespace

std::span<const csv_table> csv_tables() { return tables; }

const csv_table* find_csv_table(std::string_view name) {
  const auto* const found = std::ranges::find(tables, name, &csv_table::name);
  return found == std::end(tables) ? nullptr : found;
}

std::string_view to_text(column_type type) {
  switch (type) {
    case text:
      return "text";
    case free_text:
      return "free text";
    case i64:
      return "signed 64";
    case u64:
      return "unsigned 64";
    case character:
      return "character";
    case column_type::time:
      return "time";
  }
  return {};
}

std::string_view to_text(column_unit unit) {
  switch (unit) {
    case none:
      return "";
    case bytes:
      return "bytes";
    case count:
      return "count";
    case record:
      return "record number";
    case id:
      return "id";
    case address:
      return "address";
  }
  return {};
}

}  // namespace kiv
