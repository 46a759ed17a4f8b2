#pragma once

#include <gtest/gtest.h>
#include <kiv_trace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/run_trace.h"
#include "trace/diagnostics.h"
#include "trace/header_text.h"
#include "trace/kiv_hdr.h"
#include "trace/xml_parser.h"

namespace kiv::test {

// A directory for the traces of a run, and what kiv makes of them.
class written_run {
 public:
  written_run() : directory_(dir_ / "RUN") {
    kiv_trace_options_init(&options);
    options.run_id = "RUN";
    options.directory = directory_.c_str();
    options.pid = 7;
    options.start_secs = 1'700'000'000;
  }

  kiv_trace* open() const {
    kiv_trace* opened = kiv_trace_open(&options);
    EXPECT_NE(opened, nullptr) << kiv_trace_error();
    return opened;
  }

  const std::string& directory() const { return directory_; }
  std::string header_path() const { return directory_ + "/kiv.7.kivhdr"; }
  // The content of each data file that is there, by number.
  std::vector<std::string> data() const {
    std::vector<std::string> all;
    for (;;) {
      const std::string path = directory_ + "/" + data_file_name("kiv", "7", all.size());
      if (access(path.c_str(), F_OK) != 0) return all;
      all.push_back(read_file(path));
    }
  }
  run_result analysed() const { return run_kiv(dir_.path(), {"-R", "RUN"}); }

  kiv_trace_options options{};

 private:
  temp_dir dir_;
  std::string directory_;
};

// A header as kiv reads it.
struct read_back {
  explicit read_back(const std::string& path) : result(header.read_header(path)) {}
  diagnostics faults;
  XmlParser parser{faults};
  kiv_hdr header{parser};
  const int result;
};

// The texts of the markers that the program wrote, in order.
inline std::vector<std::string> markers(const run_result& run) {
  std::vector<std::string> all;
  const table rows = run.rows("marker");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows.text(i, "type") == "Marker") all.emplace_back(rows.text(i, "marker_text"));
  }
  return all;
}

// What kiv says on its error stream besides the data files that it opens and closes.
inline std::string complaints(const run_result& run) {
  std::istringstream lines(run.err);
  std::string all;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("Opening file: ") && !line.starts_with(" closing file ")) all += line;
  }
  return all;
}

// Runs `action` in a child process, which ends without any clearing up. Whether it returned true.
template <class Action>
bool holds_in_child(Action action) {
  const pid_t child = fork();
  if (child == 0) _exit(action() ? 0 : 1);
  int status = -1;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace kiv::test
