// Writes the database scripts of both dialects into a directory.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "clickhouse/schema.h"
#include "rows/row_tables.h"
#include "store/schema.h"
#include "tsql.h"

namespace {

bool write(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (file.flush()) return true;
  std::cerr << "cannot write " << path.string() << '\n';
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "Usage: make_schemas DIRECTORY\n";
    return 1;
  }
  const std::filesystem::path directory = argv[1];
  const bool done =
      write(directory / "sqlite" / "schema.sql", kiv::store::schema_sql()) &&
      write(directory / "sqlite" / "rows.sql", kiv::rows::row_schema_sql()) &&
      write(directory / "clickhouse" / "server.sql", kiv::clickhouse::schema_sql({}, {})) &&
      write(directory / "clickhouse" / "cluster.sql", kiv::clickhouse::schema_sql("kiv", "kiv")) &&
      write(directory / "sqlserver" / "1_tables.sql", kiv::server::tsql_tables()) &&
      write(directory / "sqlserver" / "2_procedures.sql", kiv::server::tsql_procedures()) &&
      write(directory / "sqlserver" / "3_views.sql", kiv::server::tsql_views());
  return done ? 0 : 2;
}
