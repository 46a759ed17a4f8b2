#include "clickhouse/read_run.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

#include "clickhouse/result_cursor.h"
#include "clickhouse/schema.h"
#include "store/places_fit.h"
#include "store/profile_columns.h"
#include "store/value_reader.h"

namespace kiv::clickhouse {
namespace {

// An entry of a list as it was stored.
struct stored_entry {
  std::int64_t place = 0;
  std::vector<std::int64_t> numbers;
  std::vector<std::string> texts;
};

// The members of an entry, one after another; those of a damaged one may be too few.
struct next_members {
  std::int64_t number() {
    fits = fits && numbers < entry.numbers.size();
    return fits ? entry.numbers[numbers++] : 0;
  }
  std::string text() {
    fits = fits && texts < entry.texts.size();
    return fits ? std::move(entry.texts[texts++]) : std::string();
  }

  stored_entry& entry;
  bool& fits;
  std::size_t numbers = 0, texts = 0;
};
using member_reader = store::value_reader<next_members>;

using stored_lists = std::map<std::string, std::vector<stored_entry>, std::less<>>;

class profile_maker {
 public:
  explicit profile_maker(stored_lists& lists) : lists_(lists) {}

  void operator()(std::string_view list, auto& entries, auto columns_of) {
    for (auto& stored : in_order(list)) {
      fits_ = fits_ && stored.place == static_cast<std::int64_t>(entries.size());
      if (!fits_) return;
      typename std::decay_t<decltype(entries)>::value_type made;
      columns_of(member_reader({stored, fits_}, fits_), made);
      entries.push_back(std::move(made));
    }
  }
  void operator()(std::string_view list, block_groups& groups, auto columns_of) {
    for (auto& stored : in_order(list)) {
      fits_ = fits_ && stored.place == static_cast<std::int64_t>(groups.size());
      if (!fits_) return;
      block_group group;
      columns_of(member_reader({stored, fits_}, fits_), group);
      groups.push_back(group);
    }
  }
  template <class Owner>
  void operator()(std::string_view list, std::vector<Owner>& owners) {
    for (auto& stored : in_order(list)) {
      std::size_t owner = 0, place = 0;
      id_level level;
      member_reader({stored, fits_}, fits_)(owner, place, level.id, level.bytes);
      fits_ = fits_ && owner < owners.size() && place == owners[owner].changed.size();
      if (!fits_) return;
      owners[owner].changed.push_back(level);
    }
  }
  void read_trace(profile& into) {
    auto& stored = in_order("trace");
    fits_ = stored.size() == 1;
    if (fits_) store::trace_columns(member_reader({stored[0], fits_}, fits_), into);
  }
  bool fits() const { return fits_; }

 private:
  std::vector<stored_entry>& in_order(std::string_view list) {
    auto& entries = lists_.try_emplace(std::string(list)).first->second;
    std::ranges::sort(entries, {}, &stored_entry::place);
    return entries;
  }

  stored_lists& lists_;
  bool fits_ = true;
};

std::string select_of_load(const server_url& url, const load_id& load) {
  const auto from = [&](std::string_view stored) {
    return " FROM " + insert_table(stored, url.cluster) + " WHERE " + rows_of(load.run) +
           " AND import = " + std::to_string(load.import);
  };
  std::string groups =
      "no_free, id_place, color_place, line_place, path_place, process_place, query_place, resizes";
  for (const std::string_view of :
       {"made", "freed", "left", "reset", "released", "live", "peak", "temporary"}) {
    for (const std::string_view unit : {"_blocks", "_bytes", "_tot_bytes"}) {
      groups += ", " + std::string(of) + std::string(unit);
    }
  }
  return "SELECT list, trace, place, numbers, texts" + from("list_stored") +
         " UNION ALL SELECT 'block_group' AS list, trace, place, [" + groups +
         "] AS numbers, emptyArrayString() AS texts" + from("block_group_stored") +
         " UNION ALL SELECT 'trace' AS list, trace, trace AS place, [pid, records, heap_bytes, "
         "gap_bytes, from_rows, peak_blocks, peak_bytes, peak_tot_bytes, peak_record] AS numbers, "
         "[run_id, program, environment, account, host, user, description, start_time, end_time, "
         "peak_time] AS texts" +
         from("trace_stored");
}

}  // namespace

std::optional<run_profile> read_run(server& from, const load_id& load, std::size_t traces,
                                    std::string& error) {
  std::map<std::int64_t, stored_lists> by_trace;
  result_cursor rows(from, select_of_load(from.url(), load), "tnntt");
  bool fits = true;
  while (rows.step()) {
    stored_entry& entry = by_trace[rows.integer(1)][std::string(rows.text(0))].emplace_back();
    entry.place = rows.integer(2);
    fits = fits && read_array(rows.raw(3), entry.numbers) && read_array(rows.raw(4), entry.texts);
  }
  if (rows.failed()) {
    error = rows.error();
    return std::nullopt;
  }
  run_profile run;
  run.name = load.run;
  for (auto& [place, lists] : by_trace) {
    profile& p = run.traces.emplace_back();
    profile_maker make(lists);
    make.read_trace(p);
    store::visit_lists(p, make);
    store::visit_levels(p, make);
    fits = fits && make.fits() && store::places_fit(p);
  }
  if (fits && run.traces.size() == traces) return run;
  error = "the database is damaged: a trace does not fit together";
  return std::nullopt;
}

}  // namespace kiv::clickhouse
