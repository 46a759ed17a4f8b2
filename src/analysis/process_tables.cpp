// The rows of the tables that belong to one process: `flow`, `arcs`, `symbols` and `flowdata`.

#include "analysis/kiv_process.h"
#include "reader/kiv_reader.h"
#include "settings.h"

namespace kiv {

namespace {

// Object name, object id, function number, function name. An arc can end at a number without
// function.
void function_columns(csv_row& row, const Func_rel& function, kiv_reader* reader) {
  const Func_loc* location = function.location;
  if (location == nullptr) {
    row.col("").col(0).col(0).col("");
    return;
  }
  row.col(location->get_obj_name(reader)).col(location->object_id);
  row.col(location->function_number).col(location->name);
}

struct flow_sums {
  std::uint64_t size = 0;
  std::uint64_t count = 0;
};

}  // namespace

void KivProcess::write_flow_row(std::uint32_t depth, std::uint32_t arc, char direction) const {
  csv_row row(reader_->table(replay_table::flow));
  row.raw(reader_->run_columns());
  row.cols(pid_, flow_counter_, depth, std::uint64_t{counters.record_count} + 1, arc);
  row.end_line(direction);
}

void KivProcess::dump_arcs(std::ostream& os) const {
  for (std::size_t number = 0; number < arcs_.size(); ++number) {
    csv_row row(os);
    row.raw(reader_->run_columns()).col(pid_).col(number);
    function_columns(row, *arcs_[number].from, reader_);
    function_columns(row, *arcs_[number].to, reader_);
    row.end_line();
  }
}

void KivProcess::dump_symbols(std::ostream& os) const {
  std::uint64_t index = 0;
  for (const auto& [sym, symbol] : symbols_) {
    csv_row row(os);
    row.raw(reader_->run_columns()).col(pid_).col(symbol->flow_number).col(index++).col(sym);
    row.col(symbol->size).col(symbol->category_tag()).col(symbol->flags);
    symbol->print(row);
    row.end_text();
  }
}

// The symbols in groups of one flow number each; the numbers may recur, and every group then shows
// the sums over all symbols of its number.
void KivProcess::dump_flowdata(std::ostream& os) const {
  absl::flat_hash_map<std::uint32_t, flow_sums> sums;
  for (const auto& [sym, symbol] : symbols_) {
    flow_sums& flow = sums[symbol->flow_number];
    flow.size += symbol->size;
    ++flow.count;
  }
  std::uint64_t group = 0;
  const KivSymbol* previous = nullptr;
  for (const auto& [sym, symbol] : symbols_) {
    csv_row row(os);
    if (previous == nullptr || previous->flow_number != symbol->flow_number) {
      if (previous != nullptr) row.raw("<<>>\n");
      const flow_sums& flow = sums[symbol->flow_number];
      row.raw(reader_->run_columns()).col(pid_).col(symbol->flow_number).col(group++);
      row.col(flow.size).col(flow.count);
    }
    row.raw(symbol->category_tag()).raw(':');
    symbol->print(row);
    row.end_text();
    previous = symbol.get();
  }
  csv_row(os).raw("<<>>").end_text();
}

}  // namespace kiv
