#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clickhouse/literals.h"
#include "profile/run_profile.h"
#include "store/run_target.h"

namespace kiv::clickhouse {

// A load of a run.
struct load_id {
  std::string_view run;
  std::int64_t import = 0;
};

// All figures of some groups in the order of the views, with those that leaked, and the resizes.
std::vector<std::int64_t> view_figures(const group_figures& figures, const amount& leaked);

// Rows for import_stored, trace_stored, block_group_stored and name_sum_stored.
std::string import_row(const load_id& load, const run_profile& run,
                       const store::save_options& options, const std::string& imported_at,
                       std::optional<std::uint64_t> row_count);
std::string deleted_import_row(const load_id& load, const std::string& deleted_at);
std::string trace_rows(const load_id& load, const run_profile& run,
                       const store::run_labels& labels);
std::string block_group_rows(const load_id& load, const run_profile& run);
std::string name_sum_rows(const load_id& load, const run_profile& run);

// Hands rows for list_stored to `insert`, some megabytes at a time: call paths are there as text,
// which may be much longer than the profile. False, at once, when `insert` gives that.
bool insert_list_rows(const load_id& load, const run_profile& run,
                      const std::function<bool(std::string)>& insert);

}  // namespace kiv::clickhouse
