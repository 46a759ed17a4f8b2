#include "tables/sql_script.h"

#include "tables/csv_names.h"

namespace kiv {

void sql_script::set_path(const std::string& directory, const std::string& runid, int version,
                          bool first) {
  runid_ = runid;
  version_ = version;
  if (!first) return;
  file_.open(directory + "/" + make_script_name(runid), true);
  file_.write(
      "USE KIV\n"
      "DECLARE @RUNID varchar(10)\n"
      "DECLARE @Path varchar(100)\n"
      "\n"
      "SET @RUNID = '");
  file_.write(safe_runid(runid));
  file_.write(
      "'\n"
      "SET @Path = '$(ScriptDir)\\'\n"
      "\n");
}

void sql_script::generate_import(const csv_table& table, int number) {
  file_.write(make_import_statement(runid_, table, version_, number));
}

}  // namespace kiv
