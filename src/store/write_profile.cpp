#include <concepts>
#include <string>

#include "store/name_sums.h"
#include "store/profile_columns.h"
#include "store/profile_tables.h"

namespace kiv::store {
namespace {

// Binds values to the parameters of a statement, one after another.
class binder {
 public:
  // Begins behind the parameter `last`.
  explicit binder(statement& s, int last = 0) : statement_(s), last_(last) {}

  void operator()(const auto&... values) { (bind(values), ...); }

 private:
  void bind(const std::string& text) { statement_.bind(++last_, std::string_view(text)); }
  template <class T>
  requires std::integral<T> || std::is_enum_v<T>
  void bind(T value) { statement_.bind(++last_, static_cast<std::int64_t>(value)); }

  statement& statement_;
  int last_;
};

std::string insert_into(const std::string& table, int columns) {
  std::string sql = "INSERT INTO " + table + " VALUES (?";
  for (int i = 1; i < columns; ++i) sql += ", ?";
  return sql + ")";
}

// Counts the columns of a row.
struct counter {
  void operator()(const auto&... values) { *count += static_cast<int>(sizeof...(values)); }
  int* count;
};

class profile_writer {
 public:
  profile_writer(database& db, std::int64_t trace) : db_(db), trace_(trace) {}

  void operator()(const char* table, const auto& list, auto columns_of) {
    if (!done_ || list.empty()) return;
    int columns = 2;
    columns_of(counter{&columns}, list[0]);
    statement insert = db_.prepare(insert_into(table, columns));
    done_ = static_cast<bool>(insert);
    for (std::size_t place = 0; done_ && place < list.size(); ++place) {
      binder row(insert);
      row(trace_, place);
      columns_of(row, list[place]);
      done_ = insert.run();
    }
  }

  template <class Owner>
  void operator()(const char* table, const std::vector<Owner>& owners) {
    statement insert = db_.prepare(insert_into(table, 5));
    done_ = done_ && insert;
    for (std::size_t owner = 0; owner < owners.size(); ++owner) {
      const auto& levels = owners[owner].changed;
      for (std::size_t place = 0; done_ && place < levels.size(); ++place) {
        binder row(insert);
        row(trace_, owner, place, levels[place].id, levels[place].bytes);
        done_ = insert.run();
      }
    }
  }

  // By colour there is the id too.
  void sums(const name_sums& sums) {
    for (const auto& list : sums.lists()) {
      const bool has_id = list.key == "color";
      statement insert = db_.prepare(insert_into("sum_by_" + list.key, has_id ? 8 : 7));
      done_ = done_ && insert;
      for (const auto& sum : list.sums) {
        if (!done_) return;
        binder row(insert);
        row(trace_, sum.place);
        if (has_id) row(sum.id);
        for (const auto bytes : sum.bytes) row(bytes);
        done_ = insert.run();
      }
    }
  }

  bool done() const { return done_; }

 private:
  database& db_;
  std::int64_t trace_;
  bool done_ = true;
};

}  // namespace

bool write_profile(database& db, std::int64_t run, const profile& p) {
  int columns = 2;
  trace_columns(counter{&columns}, p);
  statement insert = db.prepare(insert_into("trace", columns));
  if (!insert) return false;
  insert.bind_null(1);
  insert.bind(2, run);
  trace_columns(binder(insert, 2), p);
  if (!insert.run()) return false;
  profile_writer write(db, sqlite3_last_insert_rowid(db.handle()));
  visit_lists(p, write);
  visit_levels(p, write);
  write.sums(name_sums(p));
  return write.done();
}

}  // namespace kiv::store
