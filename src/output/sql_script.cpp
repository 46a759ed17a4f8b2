#include "output/sql_script.h"

#include "output/csv_file_sequence.h"
#include "output/csv_tables.h"

namespace kiv {

sql_script::sql_script(const char* extension) : extension_(extension), stream_(&buffer_) {
  stream_.setstate(std::ios_base::failbit);
}

void sql_script::set_path(const std::string& directory, const std::string& runid, int version,
                          bool first) {
  runid_ = safe_runid(runid);
  version_ = version;
  if (!first) return;
  const bool opened = buffer_.open(directory + "/kiv." + runid_ + "." + extension_, true);
  stream_.clear(opened ? std::ios_base::goodbit : std::ios_base::failbit);
  stream_ << "USE KIV\n"
             "DECLARE @RUNID varchar(10)\n"
             "DECLARE @Path varchar(100)\n"
             "\n"
             "SET @RUNID = '"
          << runid_
          << "'\n"
             "SET @Path = '$(ScriptDir)\\'\n"
             "\n";
}

void sql_script::generate_import(const std::string& name, int number) {
  const csv_table* table = find_csv_table(name);
  const bool ends_with_marker = table && table->end == row_end::marker;
  stream_ << "execute Do_Import_Kiv_Csv_File" << (name == "memory" ? "_Memory" : "") << " @Path, '"
          << runid_ << "', '" << name << version_ << "', '" << name << "', '" << number << '\'';
  if (ends_with_marker) stream_ << ", '" << row_end_marker << '\'';
  stream_ << ";\n";
}

}  // namespace kiv
