#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kiv {

class file_source;
struct run_output;

// How traces are analysed.
struct trace_options {
  std::string_view description;  // for the `runs` table
  std::int64_t size_limit = 0;   // of CSV files, in bytes
};

// Analyses the trace whose header file is `dir`/`file` and writes its tables into `dir`. `files`:
// where its data files are; `first`: no trace came before in this output.
// 0: done; 1: the header's file type is not "bin" (or there is no readable header); 2: the header's
// version is not supported. A trace that is turned away has created its first ten tables.
int process_file(run_output& output, file_source& files, const std::string& dir,
                 const std::string& file, const trace_options& options, bool first);

}  // namespace kiv
