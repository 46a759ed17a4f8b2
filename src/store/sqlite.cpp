#include "store/sqlite.h"

#include <cstring>

namespace kiv::store {
namespace {

std::string system_reason(sqlite3* db) {
  const int number = sqlite3_system_errno(db);
  return number == 0 ? std::string() : std::string(": ") + std::strerror(number);
}

// What a failure means to the user of the file.
std::string explain(sqlite3* db, int extended, int seconds) {
  switch (extended & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "another program has kept the database locked for " + std::to_string(seconds) + " s";
    case SQLITE_FULL:
      return "the disk is full";
    case SQLITE_READONLY:
    case SQLITE_PERM:
      return "the database cannot be written here";
    case SQLITE_CANTOPEN:
      return "cannot be opened" + system_reason(db);
    case SQLITE_IOERR:
      return "cannot be read or written" + system_reason(db);
    case SQLITE_NOTADB:
      return "not a database made by kivdb";
    case SQLITE_CORRUPT:
      return "the database is damaged";
    case SQLITE_NOMEM:
      return "out of memory";
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
      return "the statement is empty";
    default:
      return sqlite3_errmsg(db);
  }
}

}  // namespace

bool statement::step() {
  const int result = sqlite3_step(stmt_.get());
  failed_ = result != SQLITE_ROW && result != SQLITE_DONE;
  if (failed_) db_->note_error();
  return result == SQLITE_ROW;
}

bool statement::run() {
  step();
  sqlite3_reset(stmt_.get());
  return !failed_;
}

bool database::note_error() {
  const int extended = db_ ? sqlite3_extended_errcode(db_.get()) : SQLITE_NOMEM;
  error_code_ = extended & 0xff;
  error_ = explain(db_.get(), extended, seconds_);
  return false;
}

bool database::open(const std::string& name, int flags) {
  sqlite3* raw = nullptr;
  const int result = sqlite3_open_v2(name.c_str(), &raw, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  db_.reset(raw);
  return result == SQLITE_OK || note_error();
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
  return {stmt, *this};
}

std::int64_t database::number(std::string_view sql) {
  statement query = prepare(sql);
  return query && query.step() ? query.number(0) : 0;
}

void database::wait_for_locks(int seconds) {
  seconds_ = seconds;
  sqlite3_busy_timeout(db_.get(), seconds * 1000);
}

transaction::transaction(database& db, kind k)
    : db_(db),
      open_(db.exec(k == kind::read    ? "BEGIN"
                    : k == kind::write ? "BEGIN IMMEDIATE"
                                       : "BEGIN EXCLUSIVE")) {}

// The failure that led here stays the database's error.
transaction::~transaction() {
  if (open_) sqlite3_exec(db_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

bool transaction::commit() {
  if (!db_.exec("COMMIT")) return false;
  open_ = false;
  return true;
}

}  // namespace kiv::store
