#pragma once

#include <optional>
#include <string>
#include <vector>

#include "profile/run_profile.h"

namespace kiv::db {

// Where runs come from: a directory with all headers of a run, as `kiv -R` takes them; one header
// file; or a database. Without a trace, a directory with CSV tables.
enum class source_kind { directory, header, database };

// Nothing, with `error` set, when there is no such file or directory.
std::optional<source_kind> kind_of_source(const std::string& path, std::string& error);

// The header files that sources other than databases stand for, those of a directory in the order
// of their names. False, with `error` set, when a source cannot be read, has none, or is there
// twice.
bool find_headers(const std::vector<std::string>& sources, std::vector<std::string>& headers,
                  std::string& error);

// Replays the traces and groups them by run id. False, with `error` set, when no header can be
// read, or two traces have the same run and process id. Of several headers one that cannot be read
// is a loss of every run.
bool replay(const std::vector<std::string>& headers, std::vector<run_profile>& runs,
            std::string& error);

// The runs of a source: the one that is named, or all of a trace's, or the one that was imported
// last into a database. False, with `error` set, when there is none.
bool load_runs(const std::string& source, const std::optional<std::string>& run,
               std::vector<run_profile>& runs, std::string& error);

// The same where one run is wanted: that there are several is an error then.
bool load_run(const std::string& source, const std::optional<std::string>& run, run_profile& into,
              std::string& error);

}  // namespace kiv::db
