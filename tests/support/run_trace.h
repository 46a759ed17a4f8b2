#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/trace_builder.h"

namespace kiv {
class file_source;
}

namespace kiv::test {

// A private directory, removed with everything in it when the object dies.
class temp_dir {
 public:
  temp_dir();
  ~temp_dir();
  temp_dir(const temp_dir&) = delete;
  temp_dir& operator=(const temp_dir&) = delete;
  const std::string& path() const { return path_; }
  std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

 private:
  std::string path_;
};

// The rows of a table, cut into cells. A test fails at once when a row has other columns than the
// catalogue says.
class table {
 public:
  table(std::string_view name, std::string_view bytes, char data_sep, char fun_sep);
  std::size_t size() const { return rows_.size(); }
  std::string_view text(std::size_t row, std::string_view column) const;
  std::int64_t number(std::size_t row, std::string_view column) const;  // modulo 2^64

 private:
  std::map<std::string_view, std::size_t> columns_;
  std::vector<std::vector<std::string>> rows_;
};

// What a run of the analyser left behind.
struct run_result {
  int status = -1;
  std::string out, err;
  std::map<std::string, std::string> files;  // written by the analyser; by name, without directory
  char data_sep = ';', fun_sep = ';';

  // The parts of a table in the order of their numbers, and all of them as one text.
  std::vector<std::string_view> parts(std::string_view table_name) const;
  std::string bytes(std::string_view table_name) const;
  table rows(std::string_view table_name) const;
};

// Runs the analyser in the directory `cwd`: called in this process, which is fast and seen by
// sanitizers (the streams are put back afterwards), or, when a path is given,
// as that program. The time zone is UTC either way.
run_result run_kiv(const std::string& cwd, const std::vector<std::string>& args,
                   const std::string& program = {});

// Runs it over one trace in a directory of its own, by the trace's header file.
run_result run_trace(const trace& t, std::vector<std::string> args = {});

// Replays header files, in this order, as the traces of one run over the directory `cwd`; their
// data files come from the disk when no other source is given.
run_result run_in_order(const std::string& cwd, const std::vector<std::string>& headers,
                        int size_limit, file_source* source = nullptr);

// "" when the texts are equal, else the number and both versions of the first line that differs.
std::string first_difference(std::string_view expected, std::string_view actual);

std::string read_file(const std::string& path);  // empty when there is none

}  // namespace kiv::test
