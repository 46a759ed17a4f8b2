#include "store/query.h"

#include <utility>

namespace kiv::store {
namespace {

// Called by SQLite for everything that a statement would do.
int allow_reading(void* refused, int action, const char*, const char*, const char*, const char*) {
  if (action == SQLITE_SELECT || action == SQLITE_READ || action == SQLITE_FUNCTION ||
      action == SQLITE_RECURSIVE) {
    return SQLITE_OK;
  }
  *static_cast<bool*>(refused) = true;
  return SQLITE_DENY;
}

// Prepares statements of the user's, one and a reading one.
class query_maker {
 public:
  query_maker(database& db, std::string& error) : db_(db), error_(error) {
    sqlite3_set_authorizer(db_.handle(), allow_reading, &refused_);
  }
  ~query_maker() { sqlite3_set_authorizer(db_.handle(), nullptr, nullptr); }
  query_maker(const query_maker&) = delete;
  query_maker& operator=(const query_maker&) = delete;

  bool prepare(std::string_view sql, statement& into) {
    std::string_view rest;
    if (!prepare_one(sql, into, rest)) return false;
    if (!into) return fail("no statement");
    statement second;
    if (!prepare_one(rest, second, rest) || second) return fail("more than one statement");
    if (into.columns() == 0 || sqlite3_stmt_readonly(last_) == 0) {
      return fail("only a SELECT is possible");
    }
    return true;
  }

 private:
  bool fail(std::string what) {
    error_ = std::move(what);
    return false;
  }

  bool prepare_one(std::string_view sql, statement& into, std::string_view& rest) {
    constexpr std::size_t longest = 1'000'000;
    if (sql.size() > longest) return fail("the statement is too long");
    sqlite3_stmt* prepared = nullptr;
    const char* tail = sql.data();
    const int result = sqlite3_prepare_v2(db_.handle(), sql.data(), static_cast<int>(sql.size()),
                                          &prepared, &tail);
    into = statement(prepared, db_);
    if (result != SQLITE_OK) {
      db_.note_error();
      return fail(refused_ ? "only a SELECT is possible" : db_.error());
    }
    if (prepared != nullptr) last_ = prepared;
    rest = sql.substr(static_cast<std::size_t>(tail - sql.data()));
    return true;
  }

  database& db_;
  std::string& error_;
  bool refused_ = false;
  sqlite3_stmt* last_ = nullptr;
};

class sqlite_rows final : public row_cursor {
 public:
  sqlite_rows(const database& db, statement rows, std::vector<std::string> texts)
      : db_(db), texts_(std::move(texts)), rows_(std::move(rows)) {
    int place = 0;
    for (const auto& text : texts_) rows_.bind(++place, std::string_view(text));
  }

  int columns() const override { return rows_.columns(); }
  std::string_view name(int column) const override { return rows_.name(column); }
  bool step() override { return rows_.step(); }
  bool failed() const override { return rows_.failed(); }
  std::string error() const override { return db_.error(); }

  value_type type(int column) const override {
    switch (rows_.type(column)) {
      case SQLITE_INTEGER:
        return value_type::integer;
      case SQLITE_FLOAT:
        return value_type::real;
      case SQLITE_TEXT:
        return value_type::text;
      case SQLITE_BLOB:
        return value_type::blob;
      default:
        return value_type::null;
    }
  }
  std::int64_t integer(int column) const override { return rows_.number(column); }
  double real(int column) const override { return rows_.real(column); }
  std::string_view text(int column) const override { return rows_.text(column); }

 private:
  const database& db_;
  std::vector<std::string> texts_;  // the statement looks at them
  statement rows_;
};

}  // namespace

std::unique_ptr<row_cursor> prepare_query(database& db, std::string_view sql,
                                          std::vector<std::string> texts, std::string& error) {
  statement prepared;
  if (!query_maker(db, error).prepare(sql, prepared)) return nullptr;
  return std::make_unique<sqlite_rows>(db, std::move(prepared), std::move(texts));
}

}  // namespace kiv::store
