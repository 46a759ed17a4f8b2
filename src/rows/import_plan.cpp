#include "rows/import_plan.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "rows/import_script.h"
#include "tables/csv_names.h"

namespace kiv::rows {
namespace {

namespace fs = std::filesystem;

class planner {
 public:
  planner(import_plan& plan, std::string& error) : plan_(plan), error_(error) {}

  bool add(const std::string& source) {
    std::error_code failure;
    const auto status = fs::status(source, failure);
    if (fs::is_directory(status) || fs::is_regular_file(status)) {
      const auto real = fs::canonical(source, failure);
      if (!sources_.insert(real.string()).second) {
        error_ = source + ": named twice";
        return false;
      }
    }
    if (fs::is_directory(status)) return add_directory(source);
    if (fs::is_regular_file(status)) {
      const fs::path path(source);
      directory_ = path.has_parent_path() ? path.parent_path().string() : ".";
      return list_directory() && add_script(source) && add_files_without_script(false);
    }
    error_ = source + ": no such script or directory";
    return false;
  }

  // Sorts the files of every run and looks up their sizes. False when one is not there.
  bool finish() {
    for (auto& run : plan_.runs) {
      std::ranges::sort(run.files, [](const import_file& a, const import_file& b) {
        if (a.table != b.table) return a.table < b.table;
        return std::pair(a.number.size(), a.number) < std::pair(b.number.size(), b.number);
      });
      for (auto& file : run.files) {
        std::error_code failure;
        file.size = fs::file_size(file.path, failure);
        if (!failure) continue;
        error_ = file.path + ": " + failure.message() + "; kiv." + run.run_id +
                 ".sql announces it as one of the run's tables";
        return false;
      }
    }
    return true;
  }

  // Why a source that could be read gave nothing.
  std::string nothing_in(const std::string& source) const {
    if (!plan_.notes.empty()) {
      return source + ": nothing to import; " + plan_.notes.front();
    }
    if (!scripts_.empty()) {
      return source + ": nothing to import; kiv." + *scripts_.begin() +
             ".sql announces no file. Was the analysis stopped?";
    }
    return source +
           ": nothing to import; there is neither an import script (kiv.RUN.sql) nor a "
           "table (kiv.RUN.TABLE.1.csv)";
  }

 private:
  bool list_directory() {
    names_.clear();
    scripts_.clear();
    announced_.clear();
    std::error_code failure;
    for (fs::directory_iterator at(directory_, failure), end; !failure && at != end;
         at.increment(failure)) {
      names_.push_back(at->path().filename().string());
    }
    if (failure) {
      error_ = directory_ + ": " + failure.message();
      return false;
    }
    std::ranges::sort(names_);
    for (const auto& name : names_) {
      if (const auto run_id = parse_script_name(name)) scripts_.insert(*run_id);
    }
    return true;
  }

  bool add_directory(const std::string& directory) {
    directory_ = directory;
    if (!list_directory()) return false;
    for (const auto& run_id : scripts_) {
      if (!add_script(directory_ + "/kiv." + run_id + ".sql")) return false;
    }
    return add_files_without_script(true);
  }

  bool add_script(const std::string& path) {
    std::vector<named_csv_file> statements;
    if (!read_import_script(path, statements, error_)) return false;
    for (const auto& s : statements) {
      if (s.runid.find('/') != std::string::npos) {
        error_ = path + ": a run id with a '/'";
        return false;
      }
      if (!add_file(path, s.runid, s.table, s.number)) return false;
    }
    return true;
  }

  // The analysis announces a later trace's files only when a split makes new ones, so a run without
  // a script of its own is taken whole. Where there is one, other files are left-overs.
  bool add_files_without_script(bool whole_directory) {
    for (const auto& name : names_) {
      const auto csv = parse_csv_name(name);
      if (!csv || announced_.contains(name)) continue;
      if (scripts_.contains(csv->runid)) {
        if (whole_directory || seen_.contains(csv->runid)) {
          plan_.notes.push_back(directory_ + "/" + name + ": left out, kiv." + csv->runid +
                                ".sql does not announce it");
        }
      } else if (whole_directory || seen_.contains(csv->runid)) {
        if (!add_file(directory_, csv->runid, csv->table, csv->number)) return false;
      }
    }
    return true;
  }

  bool add_file(const std::string& source, const std::string& run_id, const csv_table* table,
                const std::string& number) {
    const std::string name = make_csv_name(run_id, table->name, number);
    if (!announced_.insert(name).second) return true;  // a script names some files twice
    std::error_code failure;
    const auto real = fs::weakly_canonical(directory_ + "/" + name, failure);
    if (!files_.insert(real.string()).second) {
      error_ = directory_ + "/" + name + ": named by two sources";
      return false;
    }
    const auto [seen, is_new] = seen_.try_emplace(run_id, plan_.runs.size(), directory_);
    if (is_new) plan_.runs.push_back({run_id, source, {}});
    if (seen->second.second != directory_) {
      error_ = "run " + run_id + " is in " + seen->second.second + " and in " + directory_ +
               "; import them into different databases";
      return false;
    }
    plan_.runs[seen->second.first].files.push_back({table, number, directory_ + "/" + name});
    return true;
  }

  import_plan& plan_;
  std::string& error_;
  std::set<std::string> sources_, files_;  // by their real paths, of all sources
  std::string directory_;
  std::vector<std::string> names_;   // all files of the directory
  std::set<std::string> scripts_;    // run ids that have a script in the directory
  std::set<std::string> announced_;  // files of the directory that are in the plan
  std::map<std::string, std::pair<std::size_t, std::string>> seen_;  // run id: place, directory
};

}  // namespace

std::uint64_t import_plan::bytes() const {
  std::uint64_t sum = 0;
  for (const auto& run : runs) {
    for (const auto& file : run.files) sum += file.size;
  }
  return sum;
}

bool make_import_plan(const std::vector<std::string>& sources, import_plan& plan,
                      std::string& error) {
  planner p(plan, error);
  for (const auto& source : sources) {
    if (!p.add(source)) return false;
  }
  if (plan.runs.empty()) {
    error = p.nothing_in(sources.front());
    return false;
  }
  return p.finish();
}

const run_plan* find_run(const import_plan& plan, std::string_view run_id) {
  const auto found = std::ranges::find(plan.runs, safe_runid(run_id), &run_plan::run_id);
  return found == plan.runs.end() ? nullptr : &*found;
}

}  // namespace kiv::rows
