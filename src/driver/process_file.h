#pragma once

namespace kiv {

class csv_file_sequence;
class sql_script;

// Analyses the trace whose header file is `dir`/`file` and writes its tables into `dir`. `first`:
// no trace came before in this run; `max`: size limit of CSV files in bytes.
// 0: done; 1: the header's file type is not "bin" (or there is no readable header); 2: the header's
// version is not supported. A trace that is turned away has created its first ten tables.
int process_file(csv_file_sequence* seq, sql_script* script, const char* dir, const char* file,
                 const char* description, bool first, int max);

}  // namespace kiv
