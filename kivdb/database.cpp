#include "database.h"

#include "schema.h"

namespace kiv::db {
namespace {

constexpr std::int64_t application_id = 0x4b495644;  // "KIVD"
constexpr std::int64_t schema_version = 1;

}  // namespace

bool database::note_error() {
  error_ = sqlite3_errmsg(db_.get());
  return false;
}

bool database::exec(const std::string& sql) {
  if (sqlite3_exec(db_.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) return true;
  return note_error();
}

statement database::prepare(std::string_view sql) {
  sqlite3_stmt* stmt = nullptr;
  if (sqlite3_prepare_v2(db_.get(), sql.data(), static_cast<int>(sql.size()), &stmt, nullptr) !=
      SQLITE_OK) {
    note_error();
  }
  return statement(stmt);
}

std::int64_t database::number(std::string_view sql) {
  statement query = prepare(sql);
  return query && query.step() ? query.number(0) : 0;
}

bool database::open(const std::string& path, open_mode mode) {
  const int flags = SQLITE_OPEN_NOMUTEX |
                    (mode == open_mode::read_only ? SQLITE_OPEN_READONLY
                                                  : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  sqlite3* raw = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &raw, flags, nullptr);
  db_.reset(raw);
  if (result != SQLITE_OK) return note_error();
  sqlite3_busy_timeout(raw, 5000);

  std::int64_t objects = 0;
  {
    statement count = prepare("SELECT count(*) FROM sqlite_schema");
    if (!count || !count.step()) return note_error();
    objects = count.number(0);
  }
  if (mode == open_mode::create && objects == 0) {
    // Rows of `memory` take some 400 bytes.
    return exec("PRAGMA page_size = 16384; PRAGMA application_id = " +
                std::to_string(application_id) +
                "; PRAGMA user_version = " + std::to_string(schema_version)) &&
           exec("BEGIN;" + sqlite_schema() + "COMMIT;");
  }
  if (number("PRAGMA application_id") != application_id) {
    error_ = "not a database made by kivdb";
    return false;
  }
  if (number("PRAGMA user_version") != schema_version) {
    error_ = "made by another version of kivdb; import the runs into a new file";
    return false;
  }
  return true;
}

}  // namespace kiv::db
