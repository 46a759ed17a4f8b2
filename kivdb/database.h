#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kiv::db {

// A prepared statement. Texts handed to `bind` must stay where they are until the next `step`.
class statement {
 public:
  statement() = default;
  explicit statement(sqlite3_stmt* prepared) : stmt_(prepared) {}

  explicit operator bool() const { return stmt_ != nullptr; }

  void bind(int index, std::int64_t value) { sqlite3_bind_int64(stmt_.get(), index, value); }
  void bind(int index, std::string_view value) {
    // A null pointer would bind NULL.
    sqlite3_bind_text64(stmt_.get(), index, value.data() ? value.data() : "", value.size(),
                        SQLITE_STATIC, SQLITE_UTF8);
  }
  void bind_null(int index) { sqlite3_bind_null(stmt_.get(), index); }
  // True when there is a row to read. After the last row, or a failure, false.
  bool step() { return (result_ = sqlite3_step(stmt_.get())) == SQLITE_ROW; }
  // Runs a statement that yields no row and makes it ready for the next run.
  bool run() {
    step();
    const bool done = result_ == SQLITE_DONE;
    sqlite3_reset(stmt_.get());
    return done;
  }
  bool failed() const { return result_ != SQLITE_ROW && result_ != SQLITE_DONE; }

  int columns() const { return sqlite3_column_count(stmt_.get()); }
  std::string_view name(int column) const { return sqlite3_column_name(stmt_.get(), column); }
  bool is_null(int column) const { return sqlite3_column_type(stmt_.get(), column) == SQLITE_NULL; }
  bool is_number(int column) const {
    const int type = sqlite3_column_type(stmt_.get(), column);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
  }
  std::int64_t number(int column) const { return sqlite3_column_int64(stmt_.get(), column); }
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
  int result_ = SQLITE_OK;
};

enum class open_mode { create, read_only };

// A database file of kivdb. Every failure leaves its text in `error()`.
class database {
 public:
  // `create` makes the file and its schema when there is none. A file that is no database, or one
  // of another program, is refused.
  bool open(const std::string& path, open_mode mode);
  bool exec(const std::string& sql);
  statement prepare(std::string_view sql);
  // First column of the first row; 0 when there is none.
  std::int64_t number(std::string_view sql);
  const std::string& error() const { return error_; }
  // What the last call failed of, a statement's step included.
  std::string last_error() const { return sqlite3_errmsg(db_.get()); }

 private:
  bool note_error();

  struct closer {
    void operator()(sqlite3* d) const { sqlite3_close(d); }
  };
  std::unique_ptr<sqlite3, closer> db_;
  std::string error_;
};

// Rolls back at the end of its life unless it was committed.
class transaction {
 public:
  explicit transaction(database& db) : db_(db), open_(db.exec("BEGIN IMMEDIATE")) {}
  transaction(const transaction&) = delete;
  transaction& operator=(const transaction&) = delete;
  ~transaction() {
    if (open_) db_.exec("ROLLBACK");
  }
  bool begun() const { return open_; }
  bool commit() {
    if (!db_.exec("COMMIT")) return false;
    open_ = false;
    return true;
  }

 private:
  database& db_;
  bool open_;
};

}  // namespace kiv::db
