// The rows written when a process ends: `arcs`, `symbols` and `flowdata`.

#include <absl/container/flat_hash_map.h>

#include "replay/kiv_object_db.h"
#include "replay/kiv_process.h"
#include "replay/kiv_reader.h"
#include "tables/kiv_tables.h"
#include "tables/symbol_text.h"

namespace kiv {

namespace {

constexpr std::string_view process_itself = "(process internal)";

struct flow_sums {
  std::uint64_t size = 0;
  std::uint64_t count = 0;
};

}  // namespace

// An arc can end at a number without function.
void kiv_tables::function_columns(csv_row& row, const Func_rel& function) {
  const Func_loc* location = function.location;
  if (location == nullptr) {
    row.col("").col(0).col(0).col("");
    return;
  }
  row.col(location->in_object() ? reader_.objects().get_object(location->object_id)->name
                                : process_itself);
  row.cols(location->object_id, location->function_number).col(location->name);
}

void kiv_tables::write_arcs_rows(const KivProcess& process) {
  std::size_t number = 0;
  for (const FuncArc& arc : process.arcs()) {
    csv_row row(file(table_id::arcs));
    row.raw(run_columns_).cols(process.pid(), number++);
    function_columns(row, *arc.from);
    function_columns(row, *arc.to);
    row.end_line();
  }
}

void kiv_tables::write_symbols_rows(const KivProcess& process) {
  std::uint64_t index = 0;
  for (const auto& [sym, symbol] : process.symbols()) {
    csv_row row(file(table_id::symbols));
    row.raw(run_columns_).cols(process.pid(), symbol->flow_number, index++, sym, symbol->size);
    row.col(category_tag(*symbol)).col(symbol->flags);
    put_declaration(row, *symbol);
    row.end_text();
  }
}

// The symbols in groups of one flow number each; the numbers may recur, and every group then shows
// the sums over all symbols of its number.
void kiv_tables::write_flowdata_rows(const KivProcess& process) {
  absl::flat_hash_map<std::uint32_t, flow_sums> sums;
  for (const auto& [sym, symbol] : process.symbols()) {
    flow_sums& flow = sums[symbol->flow_number];
    flow.size += symbol->size;
    ++flow.count;
  }
  std::uint64_t group = 0;
  const KivSymbol* previous = nullptr;
  for (const auto& [sym, symbol] : process.symbols()) {
    csv_row row(file(table_id::flowdata));
    if (previous == nullptr || previous->flow_number != symbol->flow_number) {
      if (previous != nullptr) row.raw("<<>>\n");
      const flow_sums& flow = sums[symbol->flow_number];
      row.raw(run_columns_).cols(process.pid(), symbol->flow_number, group++);
      row.cols(flow.size, flow.count);
    }
    row.raw(category_tag(*symbol)).raw(':');
    put_declaration(row, *symbol);
    row.end_text();
    previous = symbol.get();
  }
  csv_row(file(table_id::flowdata)).raw("<<>>").end_text();
}

}  // namespace kiv
