#include "kivdb/load_tables.h"

#include <algorithm>
#include <filesystem>

#include "kivdb/messages.h"
#include "report/printable.h"
#include "rows/load_rows.h"
#include "tables/csv_names.h"

namespace kiv::db {

bool run_tables::find(const found_sources& found, std::string& error) {
  std::vector<std::string> directories = found.tables;
  for (const auto& header : found.headers) {
    const auto parent = std::filesystem::path(header).parent_path();
    const std::string directory = parent.empty() ? "." : parent.string();
    if (std::ranges::find(directories, directory) == directories.end()) {
      directories.push_back(directory);
    }
  }
  if (!rows::make_import_plan(directories, plan_, error)) return false;
  if (found.tables.empty()) {
    for (const auto& note : plan_.notes) complain(note);
  }
  return true;
}

std::optional<decltype(store::save_options::rows)> run_tables::loader(const run_profile& run,
                                                                      std::string& error) const {
  const std::string& run_id = run.traces.empty() ? run.name : run.traces.front().run;
  for (const auto& tables : plan_.runs) {
    if (tables.run_id != safe_runid(run_id)) continue;
    return
        [this, &tables](store::row_target& target, const run_profile& saved, std::string& reason) {
          std::vector<std::string> rejected;
          const auto count = rows::load_rows(target, tables, options_, saved, rejected, reason);
          for (const auto& line : rejected) complain(line);
          return count;
        };
  }
  error = "there are no tables of run " + quoted_name(run_id) +
          " beside its trace; `kiv -R` writes them";
  return std::nullopt;
}

}  // namespace kiv::db
