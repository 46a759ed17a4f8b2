#include <concepts>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "clickhouse/path_texts.h"
#include "clickhouse/profile_rows.h"
#include "store/profile_columns.h"

namespace kiv::clickhouse {
namespace {

// The members of one entry: those that SQLite stores in their order, then what views add.
struct entry {
  std::vector<std::int64_t> numbers;
  std::vector<std::string_view> texts;

  void operator()(const auto&... values) { (add(values), ...); }

 private:
  void add(const std::string& text) { texts.push_back(text); }
  template <class T>
  requires std::integral<T> || std::is_enum_v<T>
  void add(T number) { numbers.push_back(static_cast<std::int64_t>(number)); }
};

// Rows that are inserted when there are enough of them.
struct row_pieces {
  void end_row() {
    rows.end_row();
    if (rows.is_full()) send();
  }
  void send() {
    if (done && !rows.bytes().empty()) done = insert(rows.take());
  }

  const std::function<bool(std::string)>& insert;
  tsv_writer rows = {};
  bool done = true;  // false after an insert that was not
};

class list_writer {
 public:
  list_writer(row_pieces& out, const load_id& load, std::size_t trace, const profile& p)
      : out_(out), load_(load), trace_(trace), profile_(p), paths_(path_texts(p)) {
    for (const auto& group : p.groups) {
      auto& [figures, leaked] = by_path_[group.path];
      figures += group;
      leaked += group.leaked();
    }
  }

  void operator()(std::string_view list, const auto& entries, auto columns_of) {
    if constexpr (!std::is_same_v<std::decay_t<decltype(entries)>, block_groups>) {
      for (std::size_t place = 0; out_.done && place < entries.size(); ++place) {
        entry row;
        columns_of(row, entries[place]);
        extend(row, entries[place], place);
        write(list, place, row);
      }
    }
  }

  template <class Owner>
  void operator()(std::string_view list, const std::vector<Owner>& owners) {
    std::map<std::uint32_t, std::uint64_t> before;  // the level of an id
    std::size_t count = 0;
    for (std::size_t owner = 0; out_.done && owner < owners.size(); ++owner) {
      for (std::size_t place = 0; place < owners[owner].changed.size(); ++place) {
        const id_level& level = owners[owner].changed[place];
        entry row;
        row(owner, place, level.id, level.bytes);
        extend_level(row, owners[owner], level.bytes - before[level.id]);
        row(profile_.ids[level.id].name);
        write(list, count++, row);
        before[level.id] = level.bytes;
      }
    }
  }

 private:
  void extend(entry&, const auto&, std::size_t) {}
  void extend(entry& row, const call_path&, std::size_t place) {
    const path_text& path = paths_[place];
    row(path.depth, path.order, path.text);
    const auto found = by_path_.find(static_cast<std::uint32_t>(place));
    if (found == by_path_.end()) return;
    for (const auto number : view_figures(found->second.first, found->second.second)) row(number);
  }
  void extend(entry& row, const histogram_bar& bar, std::size_t) { row(profile_.ids[bar.id].name); }
  void extend(entry& row, const heap_change& change, std::size_t) {
    const profile_process& process = profile_.processes[change.process];
    row(process.pid, process.name, paths_[change.path].text);
  }
  void extend(entry& row, const program_mark& mark, std::size_t place) {
    row(mark.live_bytes - (place == 0 ? 0 : profile_.marks[place - 1].live_bytes));
  }

  static void extend_level(entry& row, const timeline_step& step, std::uint64_t) {
    row(step.last_record, step.time);
  }
  static void extend_level(entry& row, const program_mark& mark, std::uint64_t change) {
    row(mark.record, change, mark.time, mark.text);
  }

  void write(std::string_view list, std::size_t place, const entry& row) {
    tsv_writer& fields = out_.rows;
    fields.add(load_.run);
    fields.add(load_.import);
    fields.add(list);
    fields.add(static_cast<std::int64_t>(trace_));
    fields.add(static_cast<std::int64_t>(place));
    fields.add(profile_.pid);
    fields.add(row.numbers);
    fields.add(row.texts);
    out_.end_row();
  }

  row_pieces& out_;
  const load_id& load_;
  std::size_t trace_;
  const profile& profile_;
  std::vector<path_text> paths_;
  std::map<std::uint32_t, std::pair<group_figures, amount>> by_path_;
};

}  // namespace

bool insert_list_rows(const load_id& load, const run_profile& run,
                      const std::function<bool(std::string)>& insert) {
  row_pieces out{insert};
  for (std::size_t i = 0; out.done && i < run.traces.size(); ++i) {
    list_writer write(out, load, i, run.traces[i]);
    store::visit_lists(run.traces[i], write);
    store::visit_levels(run.traces[i], write);
  }
  out.send();
  return out.done;
}

}  // namespace kiv::clickhouse
