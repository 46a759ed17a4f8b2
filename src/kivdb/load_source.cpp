#include "kivdb/load_source.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <utility>

#include "clickhouse/server_url.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "profile/profile_trace.h"
#include "report/printable.h"
#include "rows/import_plan.h"
#include "rows/profile_from_rows.h"

namespace kiv::db {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view header_mark = "kivhdr";
constexpr std::string_view database_magic("SQLite format 3\0", 16);

bool begins_with(const std::string& path, std::string_view magic) {
  std::string start(magic.size(), '\0');
  std::ifstream file(path, std::ios::binary);
  return file.read(start.data(), static_cast<std::streamsize>(start.size())) && start == magic;
}

bool is_table(const std::string& name) {
  return name.starts_with("kiv.") && (name.ends_with(".csv") || name.ends_with(".sql"));
}

bool search_directory(const std::string& path, found_sources& found, std::string& error) {
  std::vector<std::string> headers;
  bool has_tables = false;
  std::error_code failure;
  for (fs::directory_iterator item(path, failure), end; !failure && item != end;
       item.increment(failure)) {
    std::error_code unknown;
    if (!item->is_regular_file(unknown)) continue;
    const std::string name = item->path().filename().string();
    if (name.find(header_mark) != std::string::npos) headers.push_back(item->path().string());
    has_tables = has_tables || is_table(name);
  }
  if (failure) {
    error = path + ": " + failure.message();
    return false;
  }
  std::ranges::sort(headers);
  if (headers.empty() && has_tables) found.tables.push_back(path);
  found.headers.insert(found.headers.end(), headers.begin(), headers.end());
  if (headers.empty() && !has_tables) {
    error = path + ": no header file (kivhdr) in this directory, and no tables of kiv";
  }
  return has_tables || !headers.empty();
}

// The run of that name, made when there is none.
run_profile& run_named(std::vector<run_profile>& runs, const std::string& name) {
  for (auto& run : runs) {
    if (run.name == name) return run;
  }
  return runs.emplace_back(run_profile{name, {}});
}

std::string names_of(const std::vector<run_profile>& runs) {
  std::string names;
  for (const auto& run : runs) names += (names.empty() ? "" : ", ") + quoted_name(run.name);
  return names;
}

bool load_from_database(const std::string& path, const std::optional<std::string>& wanted,
                        std::vector<run_profile>& runs, std::string& error) {
  const auto load = [&] {
    const auto database = open_runs(path, error);
    if (!database) return false;
    const auto name = wanted ? wanted : database->latest_run(error);
    if (!name) return false;
    auto run = database->load(*name, error);
    if (run) runs.push_back(std::move(*run));
    return run.has_value();
  };
  if (load()) return true;
  error = clickhouse::without_password(path) + ": " + error;
  return false;
}

// Whether no two paths lead to the same file.
bool each_once(const std::vector<std::string>& paths, std::string& error) {
  std::set<std::pair<dev_t, ino_t>> seen;
  for (const auto& path : paths) {
    struct stat info {};
    if (stat(path.c_str(), &info) == 0 && !seen.emplace(info.st_dev, info.st_ino).second) {
      error = path + ": given twice";
      return false;
    }
  }
  return true;
}

bool replay(const std::vector<std::string>& headers, std::vector<run_profile>& runs,
            std::map<std::string, std::string>& sources, std::string& error) {
  loss unread{"unreadable header", 0, ""};
  std::set<std::pair<std::string, std::int64_t>> seen;
  for (const auto& header : headers) {
    profile trace;
    std::string reason;
    if (!profile_trace(header, trace, reason)) {
      if (unread.count++ == 0) unread.first = reason;  // names the header
      continue;
    }
    if (!seen.emplace(trace.run, trace.pid).second) {
      error = header + ": a second trace of run " + quoted_name(trace.run) + " and process " +
              std::to_string(trace.pid);
      return false;
    }
    sources.try_emplace(trace.run, fs::path(header).parent_path().string());
    run_named(runs, trace.run).traces.push_back(std::move(trace));
  }
  if (runs.empty()) {
    error = unread.first;
    return headers.empty();
  }
  if (unread.count > 0) {
    for (auto& run : runs) run.traces.front().losses.push_back(unread);
  }
  return true;
}

// The profiles of runs of which only tables are there.
bool compute(const std::vector<std::string>& directories, const rows::row_options& options,
             std::vector<run_profile>& runs, std::map<std::string, std::string>& sources,
             std::string& error) {
  if (directories.empty()) return true;
  rows::import_plan plan;
  if (!rows::make_import_plan(directories, plan, error)) return false;
  for (const auto& note : plan.notes) complain(note);
  for (const auto& tables : plan.runs) {
    run_profile run;
    std::vector<std::string> rejected;
    if (!rows::profile_from_rows(tables, options, run, rejected, error)) return false;
    for (const auto& line : rejected) complain(line);
    if (std::ranges::find(runs, run.name, &run_profile::name) != runs.end()) {
      error = tables.source + ": run " + quoted_name(run.name) + " is in another source too";
      return false;
    }
    sources.try_emplace(run.name, tables.source);
    runs.push_back(std::move(run));
  }
  return true;
}

}  // namespace

std::optional<source_kind> kind_of_source(const std::string& path, std::string& error) {
  if (clickhouse::is_server_url(path)) return source_kind::database;
  struct stat info {};
  if (stat(path.c_str(), &info) != 0) {
    error = path + ": " + std::strerror(errno);
    return std::nullopt;
  }
  if (S_ISDIR(info.st_mode)) return source_kind::directory;
  if (!S_ISREG(info.st_mode)) {
    error = path + ": neither a file nor a directory";
    return std::nullopt;
  }
  return begins_with(path, database_magic) ? source_kind::database : source_kind::header;
}

bool find_sources(const std::vector<std::string>& sources, found_sources& found,
                  std::string& error) {
  for (const auto& source : sources) {
    const auto kind = kind_of_source(source, error);
    if (!kind) return false;
    if (*kind == source_kind::database) {
      error = clickhouse::without_password(source) + ": a database; traces are wanted";
      return false;
    }
    if (*kind == source_kind::header) {
      found.headers.push_back(source);
    } else if (!search_directory(source, found, error)) {
      return false;
    }
  }
  return each_once(found.headers, error) && each_once(found.tables, error);
}

bool read_sources(const found_sources& found, const rows::row_options& options,
                  std::vector<run_profile>& runs, std::map<std::string, std::string>& sources,
                  std::string& error) {
  return replay(found.headers, runs, sources, error) &&
         compute(found.tables, options, runs, sources, error);
}

bool load_runs(const std::string& source, const std::optional<std::string>& wanted,
               std::vector<run_profile>& runs, std::string& error) {
  const auto kind = kind_of_source(source, error);
  if (!kind) return false;
  if (*kind == source_kind::database) return load_from_database(source, wanted, runs, error);
  found_sources found;
  std::map<std::string, std::string> sources;
  if (!find_sources({source}, found, error) || !read_sources(found, {}, runs, sources, error)) {
    return false;
  }
  if (!wanted) return true;
  std::erase_if(runs, [&](const run_profile& run) { return run.name != *wanted; });
  if (runs.empty()) error = source + ": no run " + quoted_name(*wanted);
  return !runs.empty();
}

bool load_run(const std::string& source, const std::optional<std::string>& wanted,
              run_profile& into, std::string& error) {
  std::vector<run_profile> runs;
  if (!load_runs(source, wanted, runs, error)) return false;
  if (runs.size() > 1) {
    error = source + ": holds several runs: " + names_of(runs);
    return false;
  }
  into = std::move(runs.front());
  return true;
}

}  // namespace kiv::db
