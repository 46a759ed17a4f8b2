#include <string>
#include <string_view>

#include "store/places_fit.h"
#include "store/profile_columns.h"
#include "store/profile_tables.h"
#include "store/value_reader.h"

namespace kiv::store {
namespace {

// The columns of a row, one after another.
struct next_columns {
  std::int64_t number() { return row.number(next++); }
  std::string_view text() { return row.text(next++); }

  const statement& row;
  int next;
};
using column_reader = value_reader<next_columns>;

class profile_reader {
 public:
  profile_reader(database& db, std::int64_t trace) : db_(db), trace_(trace) {}

  template <class Entry>
  void operator()(const char* table, std::vector<Entry>& list, auto columns_of) {
    statement query = select(table, " ORDER BY place");
    while (done_ && query.step()) {
      fits_ = fits_ && query.number(1) == static_cast<std::int64_t>(list.size());
      columns_of(column_reader({query, 2}, fits_), list.emplace_back());
    }
    done_ = done_ && !query.failed();
  }

  void operator()(const char* table, block_groups& list, auto columns_of) {
    statement query = select(table, " ORDER BY place");
    while (done_ && query.step()) {
      fits_ = fits_ && query.number(1) == static_cast<std::int64_t>(list.size());
      block_group group;
      columns_of(column_reader({query, 2}, fits_), group);
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
      column_reader({query, 3}, fits_)(level.id, level.bytes);
    }
    done_ = done_ && !query.failed();
  }

  void read_trace(profile& into) {
    statement query = select("trace", "");
    if (!done_) return;
    fits_ = query.step();
    if (fits_) trace_columns(column_reader({query, 2}, fits_), into);
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
