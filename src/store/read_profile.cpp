#include <concepts>
#include <string>
#include <utility>

#include "store/places_fit.h"
#include "store/profile_columns.h"
#include "store/profile_tables.h"

namespace kiv::store {
namespace {

// Reads the columns of a row, one after another.
class column_reader {
 public:
  column_reader(const statement& row, int first, bool& fits)
      : row_(row), next_(first), fits_(fits) {}

  void operator()(auto&... values) { (read(values), ...); }

 private:
  void read(std::string& text) { text = row_.text(next_++); }
  void read(bool& value) { value = row_.number(next_++) != 0; }
  void read(distribution& value) {
    const auto number = row_.number(next_++);
    fits_ = fits_ && (number == 0 || number == 1);
    value = number == 0 ? distribution::size : distribution::lifetime;
  }
  template <std::integral T>
  void read(T& value) {
    const auto number = row_.number(next_++);
    // Counters that went below zero are stored modulo 2^64.
    if constexpr (sizeof(T) < sizeof number) fits_ = fits_ && std::in_range<T>(number);
    value = static_cast<T>(number);
  }

  const statement& row_;
  int next_;
  bool& fits_;
};

class profile_reader {
 public:
  profile_reader(database& db, std::int64_t trace) : db_(db), trace_(trace) {}

  template <class Entry>
  void operator()(const char* table, std::vector<Entry>& list, auto columns_of) {
    statement query = select(table, " ORDER BY place");
    while (done_ && query.step()) {
      fits_ = fits_ && query.number(1) == static_cast<std::int64_t>(list.size());
      columns_of(column_reader(query, 2, fits_), list.emplace_back());
    }
    done_ = done_ && !query.failed();
  }

  void operator()(const char* table, block_groups& list, auto columns_of) {
    statement query = select(table, " ORDER BY place");
    while (done_ && query.step()) {
      fits_ = fits_ && query.number(1) == static_cast<std::int64_t>(list.size());
      block_group group;
      columns_of(column_reader(query, 2, fits_), group);
      list.push_back(group);
    }
    done_ = done_ && !query.failed();
  }

  template <class Owner>
  void operator()(const char* table, std::vector<Owner>& owners) {
    statement query = select(table, " ORDER BY 2, 3");
    while (done_ && query.step()) {
      const auto owner = static_cast<std::uint64_t>(query.number(1));
      fits_ = fits_ && owner < owners.size();
      if (!fits_) return;
      auto& level = owners[owner].changed.emplace_back();
      column_reader(query, 3, fits_)(level.id, level.bytes);
    }
    done_ = done_ && !query.failed();
  }

  void read_trace(profile& into) {
    statement query = select("trace", "");
    if (!done_) return;
    fits_ = query.step();
    if (fits_) trace_columns(column_reader(query, 2, fits_), into);
    done_ = !query.failed();
  }

  bool done() const { return done_; }
  bool fits() const { return fits_; }

 private:
  statement select(const std::string& table, const std::string& order) {
    statement query = db_.prepare("SELECT * FROM " + table + " WHERE trace = ?1" + order);
    done_ = done_ && query;
    if (done_) query.bind(1, trace_);
    return query;
  }

  database& db_;
  std::int64_t trace_;
  bool done_ = true, fits_ = true;
};

}  // namespace

bool read_profile(database& db, std::int64_t trace, profile& into, std::string& error) {
  profile_reader read(db, trace);
  read.read_trace(into);
  visit_lists(into, read);
  visit_levels(into, read);
  if (!read.done()) error = db.error();
  const bool fits = read.fits() && places_fit(into);
  if (read.done() && !fits) error = "the database is damaged: a trace does not fit together";
  return read.done() && fits;
}

}  // namespace kiv::store
