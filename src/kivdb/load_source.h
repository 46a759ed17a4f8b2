#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "profile/run_profile.h"
#include "rows/run_reading.h"

namespace kiv::db {

// Where runs come from: a directory with all headers of a run, as `kiv -R` takes them, or without
// a header one with the CSV tables of a run; one header file; or a database: a file or
// the URL of a server.
enum class source_kind { directory, header, database };

// Nothing, with `error` set, when there is no such file or directory.
std::optional<source_kind> kind_of_source(const std::string& path, std::string& error);

// What sources other than databases stand for.
struct found_sources {
  std::vector<std::string> headers;  // of a directory in the order of their names
  std::vector<std::string> tables;   // directories that have CSV tables but no header
};

// False, with `error` set, when a source cannot be read, is a database, has nothing, or is there
// twice.
bool find_sources(const std::vector<std::string>& sources, found_sources& found,
                  std::string& error);

// Replays the traces and groups them by run id, and computes the profiles of runs of which only
// tables are there. Says on the error stream which rows could not be read. False, with `error` set,
// when no header can be read, tables are not whole, or two traces have the same run and process id.
// Of several headers one that cannot be read is a loss of every run. `sources` gets, for the name
// of a run, the directory it came from.
bool read_sources(const found_sources& found, const rows::row_options& options,
                  std::vector<run_profile>& runs, std::map<std::string, std::string>& sources,
                  std::string& error);

// The runs of a source: the one that is named, or all of a trace's, or the one that was imported
// last into a database. False, with `error` set, when there is none.
bool load_runs(const std::string& source, const std::optional<std::string>& run,
               std::vector<run_profile>& runs, std::string& error);

// The same where one run is wanted: that there are several is an error then.
bool load_run(const std::string& source, const std::optional<std::string>& run, run_profile& into,
              std::string& error);

}  // namespace kiv::db
