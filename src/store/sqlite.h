#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kiv::store {

class database;

// A prepared statement. Texts handed to `bind` must stay where they are until the next `step`. A
// failure leaves its text in the database's `error()`.
class statement {
 public:
  statement() = default;
  statement(sqlite3_stmt* prepared, database& db) : stmt_(prepared), db_(&db) {}

  explicit operator bool() const { return stmt_ != nullptr; }

  void bind(int index, std::int64_t value) { sqlite3_bind_int64(stmt_.get(), index, value); }
  // Any bytes; they come back as they are.
  void bind(int index, std::string_view value) {
    // A null pointer would bind NULL.
    sqlite3_bind_text64(stmt_.get(), index, value.data() ? value.data() : "", value.size(),
                        SQLITE_STATIC, SQLITE_UTF8);
  }
  void bind_null(int index) { sqlite3_bind_null(stmt_.get(), index); }

  // True when there is a row to read. After the last row, or a failure, false.
  bool step();
  // Runs a statement that yields no row and makes it ready for the next run.
  bool run();
  bool failed() const { return failed_; }

  int columns() const { return sqlite3_column_count(stmt_.get()); }
  std::string_view name(int column) const { return sqlite3_column_name(stmt_.get(), column); }
  int type(int column) const { return sqlite3_column_type(stmt_.get(), column); }
  std::int64_t number(int column) const { return sqlite3_column_int64(stmt_.get(), column); }
  double real(int column) const { return sqlite3_column_double(stmt_.get(), column); }
  // Valid until the next step.
  std::string_view text(int column) const {
    const void* bytes = sqlite3_column_blob(stmt_.get(), column);
    const int size = sqlite3_column_bytes(stmt_.get(), column);
    return {static_cast<const char*>(bytes), bytes ? static_cast<std::size_t>(size) : 0};
  }

 private:
  struct finalizer {
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
  };
  std::unique_ptr<sqlite3_stmt, finalizer> stmt_;
  database* db_ = nullptr;
  bool failed_ = false;
};

// A connection to an SQLite file. Every failure leaves its text in `error()`.
class database {
 public:
  database() = default;
  database(const database&) = delete;  // statements point to it
  database& operator=(const database&) = delete;

  // `name` is a path, or a URI with SQLITE_OPEN_URI among the flags of sqlite3_open_v2.
  bool open(const std::string& name, int flags);
  void close() { db_.reset(); }
  bool is_open() const { return db_ != nullptr; }

  bool exec(const std::string& sql);
  statement prepare(std::string_view sql);
  // First column of the first row; 0 when there is none.
  std::int64_t number(std::string_view sql);
  // How long to wait for another program that has locked the file.
  void wait_for_locks(int seconds);

  const std::string& error() const { return error_; }
  // The result code behind `error()`, without its extension.
  int error_code() const { return error_code_; }
  sqlite3* handle() { return db_.get(); }

  bool note_error();

 private:
  struct closer {
    void operator()(sqlite3* d) const { sqlite3_close_v2(d); }
  };
  std::unique_ptr<sqlite3, closer> db_;
  std::string error_;
  int error_code_ = SQLITE_OK;
  int seconds_ = 0;
};

// Rolls back at the end of its life unless it was committed.
class transaction {
 public:
  enum class kind { read, write, exclusive };

  transaction(database& db, kind k);
  transaction(const transaction&) = delete;
  transaction& operator=(const transaction&) = delete;
  ~transaction();
  bool begun() const { return open_; }
  bool commit();

 private:
  database& db_;
  bool open_;
};

}  // namespace kiv::store
