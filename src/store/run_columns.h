#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "store/run_source.h"

namespace kiv::store {

// Of the view run_list: where the number of rows stands, which may be NULL.
inline constexpr int row_count_column = 19;

// The columns before it, of a row whose values `text(column)` and `number(column)` give.
run_info read_run_columns(auto text, auto number) {
  int next = 0;
  const auto count = [&] { return static_cast<std::uint64_t>(number(next++)); };
  run_info run;
  for (std::string* one : {&run.name, &run.imported_at, &run.source}) {
    *one = std::string_view(text(next++));
  }
  run.traces = count();
  run.complete = count() != 0;
  run.from_rows = count() != 0;
  run.records = count();
  for (amount* a : {&run.allocated, &run.leaked, &run.live, &run.peak}) {
    a->blocks = count();
    a->bytes = count();
    a->tot_bytes = count();
  }
  return run;
}

}  // namespace kiv::store
