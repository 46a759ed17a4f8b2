#include "clickhouse/profile_rows.h"

#include <algorithm>
#include <concepts>

#include "clickhouse/path_texts.h"
#include "store/name_sums.h"
#include "store/profile_columns.h"

namespace kiv::clickhouse {
namespace {

// Adds values of a profile to a row as the server stores them: unsigned ones modulo 2^64.
class row_adder {
 public:
  explicit row_adder(tsv_writer& out) : out_(out) {}
  void operator()(const auto&... values) { (add(values), ...); }

 private:
  void add(const std::string& text) { out_.add(std::string_view(text)); }
  template <class T>
  requires std::integral<T> || std::is_enum_v<T>
  void add(T number) { out_.add(static_cast<std::int64_t>(number)); }
  void add(const amount& a) { (*this)(a.blocks, a.bytes, a.tot_bytes); }

  tsv_writer& out_;
};

struct sums {
  group_figures all;
  amount leaked;
};

sums sums_of(const profile& p) {
  sums made;
  for (const auto& group : p.groups) {
    made.all += group;
    made.leaked += group.leaked();
  }
  return made;
}

// The name that a place stands for.
std::string name_of_sum(const profile& p, std::string_view key, const store::name_sum& sum) {
  if (key == "id") return p.ids[sum.place].name;
  if (key == "color") return p.ids[sum.id].name + " / " + p.colors[sum.place].name;
  if (key == "line") return p.lines[sum.place];
  if (key == "function") return function_text(p.functions[sum.place]);
  return key == "process" ? p.processes[sum.place].name : p.queries[sum.place];
}

std::string_view release_of(const store::run_labels& labels) {
  for (const auto& [key, value] : labels) {
    if (key == "release") return value;
  }
  return {};
}

}  // namespace

std::vector<std::int64_t> view_figures(const group_figures& figures, const amount& leaked) {
  std::vector<std::int64_t> all;
  const auto add = [&](const amount& a) {
    for (const auto number : {a.blocks, a.bytes, a.tot_bytes}) {
      all.push_back(static_cast<std::int64_t>(number));
    }
  };
  add(figures[figure::made]);
  add(figures[figure::freed]);
  add(leaked);
  for (const auto which :
       {figure::reset, figure::released, figure::live, figure::at_peak, figure::temporary}) {
    add(figures[which]);
  }
  all.push_back(static_cast<std::int64_t>(figures.resizes));
  return all;
}

std::string import_row(const load_id& load, const run_profile& run,
                       const store::save_options& options, const std::string& imported_at,
                       std::optional<std::uint64_t> row_count) {
  std::uint64_t records = 0;
  bool from_rows = false;
  amount allocated, leaked, live, peak;
  for (const auto& trace : run.traces) {
    const sums figures = sums_of(trace);
    allocated += figures.all[figure::made];
    leaked += figures.leaked;
    live += figures.all[figure::live];
    peak += trace.peak.live;
    records += trace.records;
    from_rows = from_rows || trace.from_rows;
  }
  tsv_writer out;
  row_adder row(out);
  row(std::string(load.run), load.import, 0, imported_at, options.source,
      std::ranges::all_of(run.traces, &profile::complete), run.traces.size(), from_rows, records,
      allocated, leaked, live, peak);
  row_count ? out.add(static_cast<std::int64_t>(*row_count)) : out.add_null();
  auto labels = options.labels;
  std::ranges::sort(labels);
  std::vector<std::string_view> keys, values;
  for (const auto& [key, value] : labels) {
    keys.push_back(key);
    values.push_back(value);
  }
  out.add(keys);
  out.add(values);
  out.end_row();
  return out.take();
}

std::string deleted_import_row(const load_id& load, const std::string& deleted_at) {
  tsv_writer out;
  row_adder row(out);
  row(std::string(load.run), load.import, 1, deleted_at, std::string(), 0, 0, 0, 0, amount(),
      amount(), amount(), amount());
  out.add_null();
  out.add(std::vector<std::string_view>());
  out.add(std::vector<std::string_view>());
  out.end_row();
  return out.take();
}

std::string trace_rows(const load_id& load, const run_profile& run,
                       const store::run_labels& labels) {
  tsv_writer out;
  row_adder row(out);
  for (std::size_t i = 0; i < run.traces.size(); ++i) {
    const profile& p = run.traces[i];
    row(std::string(load.run), load.import, i, std::string(release_of(labels)), p.complete());
    store::trace_columns(row, p);
    const sums figures = sums_of(p);
    for (const auto number : view_figures(figures.all, figures.leaked)) row(number);
    out.end_row();
  }
  return out.take();
}

std::string block_group_rows(const load_id& load, const run_profile& run) {
  tsv_writer out;
  row_adder row(out);
  for (std::size_t i = 0; i < run.traces.size(); ++i) {
    const profile& p = run.traces[i];
    for (std::size_t place = 0; place < p.groups.size(); ++place) {
      const block_group g = p.groups[place];
      const std::uint32_t function = p.paths[g.path].function;
      const profile_process& process = p.processes[g.process];
      row(std::string(load.run), load.import, i, place, p.pid, function, p.ids[g.id].name,
          p.colors[g.color].name, p.lines[g.line], function_text(p.functions[function]),
          process.pid, process.name, p.queries[g.query], g.leaked(), g.no_free, g.id, g.color,
          g.line, g.path, g.process, g.query, g.resizes);
      for (const auto& figure : g.figures) row(figure);
      out.end_row();
    }
  }
  return out.take();
}

std::string name_sum_rows(const load_id& load, const run_profile& run) {
  tsv_writer out;
  row_adder row(out);
  for (std::size_t i = 0; i < run.traces.size(); ++i) {
    const profile& p = run.traces[i];
    const store::name_sums by_name(p);
    for (const auto& [key, sums] : by_name.lists()) {
      for (std::size_t place = 0; place < sums.size(); ++place) {
        row(std::string(load.run), load.import, key, i, place, p.program, p.host,
            name_of_sum(p, key, sums[place]));
        for (const auto bytes : sums[place].bytes) row(bytes);
        out.end_row();
      }
    }
  }
  return out.take();
}

}  // namespace kiv::clickhouse
