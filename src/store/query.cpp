#include "store/query.h"

#include <algorithm>
#include <string>

#include "store/view_catalogue.h"
#include "util/printable.h"

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

}  // namespace

class query_maker {
 public:
  query_maker(run_store& store, std::string& error) : db_(store.connection()), error_(error) {
    sqlite3_set_authorizer(db_.handle(), allow_reading, &refused_);
  }
  ~query_maker() { sqlite3_set_authorizer(db_.handle(), nullptr, nullptr); }
  query_maker(const query_maker&) = delete;
  query_maker& operator=(const query_maker&) = delete;

  std::optional<query> prepare(std::string_view sql) {
    query made;
    std::string_view rest;
    if (!prepare_one(sql, made.rows_, rest)) return std::nullopt;
    if (!made.rows_) return fail("no statement");
    statement second;
    if (!prepare_one(rest, second, rest) || second) return fail("more than one statement");
    if (made.columns() == 0 || sqlite3_stmt_readonly(last_) == 0) {
      return fail("only a SELECT is possible");
    }
    return made;
  }

 private:
  std::optional<query> fail(std::string what) {
    error_ = std::move(what);
    return std::nullopt;
  }

  bool prepare_one(std::string_view sql, statement& into, std::string_view& rest) {
    constexpr std::size_t longest = 1'000'000;
    if (sql.size() > longest) {
      error_ = "the statement is too long";
      return false;
    }
    sqlite3_stmt* prepared = nullptr;
    const char* tail = sql.data();
    const int result = sqlite3_prepare_v2(db_.handle(), sql.data(), static_cast<int>(sql.size()),
                                          &prepared, &tail);
    into = statement(prepared, db_);
    if (result != SQLITE_OK) {
      db_.note_error();
      error_ = refused_ ? "only a SELECT is possible" : db_.error();
      return false;
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

value_type query::type(int column) const {
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

std::optional<query> prepare_query(run_store& store, std::string_view sql, std::string& error) {
  return query_maker(store, error).prepare(sql);
}

std::optional<query> prepare_view(run_store& store, std::string_view view,
                                  const std::optional<std::string>& run, std::string& error) {
  const auto* found = find_view(view);
  if (found == nullptr) {
    error = "no view " + quoted_name(view) + "; `kivdb views` lists them";
    return std::nullopt;
  }
  if (run && !store.has_run(*run, error)) return std::nullopt;
  const std::string sql =
      run ? select_of_one_run(*found) : "SELECT * FROM " + std::string(found->name);
  auto rows = query_maker(store, error).prepare(sql);
  if (rows && run) {
    rows->run_ = std::make_unique<std::string>(*run);
    rows->rows_.bind(1, std::string_view(*rows->run_));
  }
  return rows;
}

}  // namespace kiv::store
