#include <algorithm>
#include <map>
#include <sstream>
#include <tuple>
#include <utility>

#include "fleet/fleet_answer.h"
#include "generated_fleet.h"
#include "store_fixture.h"

namespace kiv::test {
namespace {

using fleet::fleet_answer;
using fleet::fleet_options;
using report::group_key;
using report::measure;

constexpr group_key keys[] = {group_key::id,       group_key::color,   group_key::line,
                              group_key::function, group_key::process, group_key::query};

// The rows as scripts see them, columns joined by '|'.
texts rows_of(const fleet_answer& answer) {
  texts all;
  for (const auto& row : answer.rows) {
    std::string& line = all.emplace_back();
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (answer.columns[i].name.empty()) continue;
      if (i > 0) line += '|';
      if (const auto* text = std::get_if<std::string>(&row[i])) line += *text;
      if (const auto* number = std::get_if<std::uint64_t>(&row[i])) line += std::to_string(*number);
      if (const auto* change = std::get_if<std::int64_t>(&row[i])) line += std::to_string(*change);
    }
  }
  return all;
}

std::string joined(const auto&... values) {
  std::ostringstream line;
  const char* between = "";
  ((line << between << values, between = "|"), ...);
  return line.str();
}

texts sorted(texts rows) {
  std::sort(rows.begin(), rows.end());
  return rows;
}

std::string name_in(const profile& trace, const block_group& g, group_key by) {
  const profile_function& f = trace.functions[trace.paths[g.path].function];
  switch (by) {
    case group_key::id:
      return trace.ids[g.id].name;
    case group_key::color:
      return trace.ids[g.id].name + " / " + trace.colors[g.color].name;
    case group_key::line:
      return trace.lines[g.line];
    case group_key::function:
      return f.object + ':' + f.name;
    case group_key::process:
      return trace.processes[g.process].name;
    default:
      return trace.queries[g.query];
  }
}

std::uint64_t bytes_in(const block_group& g, measure of) {
  return of == measure::leaked ? g.leaked().bytes
                               : g[of == measure::peak ? figure::at_peak : figure::made].bytes;
}

using sums = std::map<std::string, std::uint64_t>;

class Fleet : public store_test {
 protected:
  // A fleet in the database, and in `fleet_` what was stored there.
  void generate(const fleet_shape& shape) {
    run_store s;
    ASSERT_TRUE(s.open(file(), open_mode::create, error_)) << error_;
    for (std::size_t n = 0; n < shape.runs; ++n) {
      fleet_.push_back(generate_run(shape, n));
      const auto& run = fleet_.back();
      ASSERT_EQ(s.save(run.profile, {"src", run.labels}, error_), save_result::saved) << error_;
    }
    ASSERT_NO_FATAL_FAILURE(open());
  }
  void open() {
    ASSERT_TRUE(store_.open(file(), open_mode::read_only, error_)) << error_;
    runs_ = {};
    ASSERT_TRUE(runs_.read(store_, "release", error_)) << error_;
  }

  static const std::string& program_of(const generated_run& run) {
    return run.profile.traces[0].program;
  }
  static std::string release_of(const generated_run& run) {
    for (const auto& [key, value] : run.labels) {
      if (key == "release") return value;
    }
    return "";
  }
  static std::uint64_t peak_of(const generated_run& run) {
    std::uint64_t sum = 0;
    for (const auto& trace : run.profile.traces) sum += trace.peak.live.bytes;
    return sum;
  }
  static sums sums_of(const generated_run& run, group_key by, measure of) {
    sums all;
    for (const auto& trace : run.profile.traces) {
      for (const auto& g : trace.groups) {
        if (const auto bytes = bytes_in(g, of)) all[name_in(trace, g, by)] += bytes;
      }
    }
    return all;
  }
  static std::uint64_t leaked_of(const generated_run& run) {
    std::uint64_t sum = 0;
    for (const auto& [name, bytes] : sums_of(run, group_key::line, measure::leaked)) sum += bytes;
    return sum;
  }

  // A figure of all runs of a group, ascending.
  using figures = std::map<std::pair<std::string, std::string>, std::vector<std::uint64_t>>;
  figures figures_by_release(std::uint64_t (*figure_of)(const generated_run&)) const {
    figures all;
    for (const auto& run : fleet_)
      all[{program_of(run), release_of(run)}].push_back(figure_of(run));
    for (auto& [group, values] : all) std::sort(values.begin(), values.end());
    return all;
  }

  std::vector<generated_run> fleet_;
  run_store store_;
  fleet::fleet_runs runs_;
};

std::uint64_t median(const std::vector<std::uint64_t>& ascending) {
  return ascending[ascending.size() / 2];
}
std::uint64_t high(const std::vector<std::uint64_t>& ascending) {
  return ascending[ascending.size() * 95 / 100];
}

TEST_F(Fleet, SumsUpProgramsAndReleases) {
  ASSERT_NO_FATAL_FAILURE(generate({130}));
  const figures peaks = figures_by_release(peak_of), leaks = figures_by_release(leaked_of);
  std::map<std::pair<std::string, std::string>, int> incomplete;
  for (const auto& run : fleet_) {
    const auto& traces = run.profile.traces;
    incomplete[{program_of(run), release_of(run)}] +=
        std::any_of(traces.begin(), traces.end(), [](const profile& p) { return !p.complete(); });
  }
  texts expected, in_view;
  for (const auto& [group, values] : peaks) {
    const auto& leaked = leaks.at(group);
    const std::string quantiles =
        joined(median(values), high(values), median(leaked), high(leaked));
    expected.push_back(
        joined(group.first, group.second, values.size(), incomplete[group], quantiles));
    in_view.push_back(joined(group.first, group.second, values.size(), quantiles));
  }
  const auto answer = rows_of(summary_of(runs_));
  EXPECT_EQ(sorted(answer), sorted(expected));
  EXPECT_GT(answer.size(), 15u);
  EXPECT_EQ(sorted(rows("SELECT * FROM fleet_summary")), sorted(in_view));
  // Releases stand as they followed each other, not as texts do.
  const auto place = [&](const std::string& release) {
    const auto at = std::find_if(answer.begin(), answer.end(), [&](const std::string& row) {
      return row.starts_with("server|" + release + '|');
    });
    return at - answer.begin();
  };
  EXPECT_LT(place("9.9"), place("10.0"));
  EXPECT_LT(place("10.0"), place("10.1"));
}

TEST_F(Fleet, TakesAnotherLabelForTheRelease) {
  ASSERT_NO_FATAL_FAILURE(generate({20}));
  fleet::fleet_runs by_half;
  ASSERT_TRUE(by_half.read(store_, "half", error_));
  std::map<std::string, int> count;
  for (const auto& [order, run] : by_half.runs()) ++count[run.release];
  EXPECT_EQ(count, (std::map<std::string, int>{{"even", 10}, {"odd", 10}}));
  fleet::fleet_runs by_none;
  ASSERT_TRUE(by_none.read(store_, "it's \\ no label", error_));
  EXPECT_EQ(by_none.runs().begin()->second.release, "");
}

TEST_F(Fleet, FindsTheHostThatIsOff) {
  ASSERT_NO_FATAL_FAILURE(generate({330, 4, 1, 5}));
  const auto answer = hosts_of(runs_);
  // Every host has enough runs of each release that a freak is not its median.
  std::map<std::pair<std::string, std::string>, std::string> farthest;
  for (const auto& row : answer.rows) {
    const auto text = [&](std::size_t i) { return std::get<std::string>(row[i]); };
    if (!text(1).empty()) farthest.try_emplace({text(0), text(1)}, text(2));
  }
  EXPECT_EQ(farthest.size(), 15u);
  for (const auto& [group, host] : farthest) {
    EXPECT_EQ(host, greedy_host) << group.first << ' ' << group.second;
  }
  std::map<std::tuple<std::string, std::string, std::string>, std::vector<std::uint64_t>> by_host;
  for (const auto& run : fleet_) {
    by_host[{program_of(run), release_of(run), run.profile.traces[0].host}].push_back(peak_of(run));
  }
  const figures all = figures_by_release(peak_of);
  ASSERT_EQ(answer.rows.size(), by_host.size());
  for (const auto& row : answer.rows) {
    const auto text = [&](std::size_t i) { return std::get<std::string>(row[i]); };
    auto values = by_host.at({text(0), text(1), text(2)});
    std::sort(values.begin(), values.end());
    EXPECT_EQ(std::get<std::uint64_t>(row[3]), values.size());
    EXPECT_EQ(std::get<std::uint64_t>(row[4]), median(values));
    EXPECT_EQ(std::get<std::uint64_t>(row[5]), median(all.at({text(0), text(1)})));
  }
}

TEST_F(Fleet, NamesRunsBeyondAMultipleOfTheMedian) {
  ASSERT_NO_FATAL_FAILURE(generate({130}));
  const figures peaks = figures_by_release(peak_of), leaks = figures_by_release(leaked_of);
  for (const std::uint64_t thousandths : {1000u, 1500u, 2000u, 5000u, 1'000'000u}) {
    texts expected;
    for (const auto& run : fleet_) {
      const auto add = [&](const figures& all, const char* of, std::uint64_t bytes) {
        const std::uint64_t middle = median(all.at({program_of(run), release_of(run)}));
        if (bytes * 1000 <= middle * thousandths) return;
        expected.push_back(
            joined(program_of(run), release_of(run), run.profile.name, of, bytes, middle));
      };
      add(peaks, "peak", peak_of(run));
      add(leaks, "leaked", leaked_of(run));
    }
    fleet_options options;
    options.beyond.thousandths = thousandths;
    EXPECT_EQ(sorted(rows_of(outliers_of(runs_, options))), sorted(expected)) << thousandths;
    if (thousandths == 2000) {
      EXPECT_EQ(rows("SELECT * FROM fleet_outliers"), sorted(expected));
    }
    EXPECT_EQ(expected.empty(), thousandths == 1'000'000);
  }
}

TEST_F(Fleet, NamesTheRunSinceWhichANameLeaks) {
  ASSERT_NO_FATAL_FAILURE(generate({60}));
  for (const auto by : keys) {
    for (const std::uint64_t limit : {0u, 300u, 65'536u}) {
      struct leak_of_name {
        const generated_run *first, *last;
        std::uint64_t bytes;
        int runs;
      };
      std::map<std::pair<std::string, std::string>, leak_of_name> found;
      for (const auto& run : fleet_) {
        for (const auto& [name, bytes] : sums_of(run, by, measure::leaked)) {
          if (bytes <= limit) continue;
          const std::pair key(program_of(run), name);
          auto& leak = found.try_emplace(key, leak_of_name{&run, {}, bytes, 0}).first->second;
          leak.last = &run;
          ++leak.runs;
        }
      }
      texts expected, in_view;
      for (const auto& [name, leak] : found) {
        expected.push_back(joined(name.first, release_of(*leak.first), leak.first->profile.name,
                                  leak.bytes, leak.runs, leak.last->profile.name, name.second));
        in_view.push_back(joined(name_of(by), name.first, name.second, leak.first->profile.name,
                                 leak.bytes, leak.runs, leak.last->profile.name));
      }
      const std::string view = "SELECT * FROM fleet_first_leaks WHERE key = '";
      if (limit == 0) {
        EXPECT_EQ(sorted(rows(view + std::string(name_of(by)) + "'")), sorted(in_view));
      }
      fleet_options options;
      options.by = by;
      options.leaked_above = limit;
      const auto answer = first_leaks_of(store_, runs_, options, error_);
      ASSERT_TRUE(answer) << error_;
      EXPECT_EQ(sorted(rows_of(*answer)), sorted(expected)) << name_of(by) << ' ' << limit;
      EXPECT_FALSE(expected.empty());
      const auto number = [](const report::table_row& row) {
        return std::stoi(std::get<std::string>(row[2]).substr(3));
      };
      EXPECT_TRUE(
          std::is_sorted(answer->rows.begin(), answer->rows.end(),
                         [&](const auto& x, const auto& y) { return number(x) > number(y); }))
          << "latest first";
      if (by != group_key::line || limit != 65'536) continue;
      ASSERT_EQ(answer->rows.size(), 1u);
      EXPECT_EQ(std::get<std::string>(answer->rows[0][1]), leaking_release);
      EXPECT_EQ(std::get<std::string>(answer->rows[0][6]), leaking_line);
    }
  }
}

TEST_F(Fleet, AddsUpWhatAllHeldAtTheirPeaks) {
  ASSERT_NO_FATAL_FAILURE(generate({30}));
  for (const auto by : keys) {
    std::map<std::pair<std::string, std::string>, std::pair<std::uint64_t, int>> held;
    for (const auto& run : fleet_) {
      for (const auto& [name, bytes] : sums_of(run, by, measure::peak)) {
        auto& [sum, runs] = held[{program_of(run), name}];
        sum += bytes;
        ++runs;
      }
    }
    texts expected;
    for (const auto& [name, sum] : held) {
      expected.push_back(joined(name.first, sum.second, sum.first, name.second));
    }
    fleet_options options;
    options.by = by;
    const auto answer = peaks_of(store_, options, error_);
    ASSERT_TRUE(answer) << error_;
    EXPECT_EQ(sorted(rows_of(*answer)), sorted(expected)) << name_of(by);
    EXPECT_TRUE(
        std::is_sorted(answer->rows.begin(), answer->rows.end(), [](const auto& a, const auto& b) {
          return std::get<std::uint64_t>(a[2]) > std::get<std::uint64_t>(b[2]);
        }));
  }
}

TEST_F(Fleet, FindsWhatGrewInTheLastRuns) {
  ASSERT_NO_FATAL_FAILURE(generate({60}));
  for (const measure of : {measure::leaked, measure::allocated}) {
    for (const std::size_t count : {2u, 3u, 5u, 20u, 21u}) {
      texts expected, in_view;
      for (const auto& program : programs) {
        std::vector<const generated_run*> last;
        for (const auto& run : fleet_) {
          if (program_of(run) == program) last.push_back(&run);
        }
        if (last.size() < count) continue;
        last.erase(last.begin(), last.end() - static_cast<std::ptrdiff_t>(count));
        for (const auto& [name, bytes] : sums_of(*last.back(), group_key::line, of)) {
          std::vector<std::uint64_t> steps;
          for (const auto* run : last) steps.push_back(sums_of(*run, group_key::line, of)[name]);
          bool grows = true;
          for (std::size_t i = 1; i < count; ++i) grows = grows && steps[i - 1] < steps[i];
          if (!grows) continue;
          expected.push_back(joined(program, last.front()->profile.name, last.back()->profile.name,
                                    steps.front(), bytes, bytes - steps.front(), name));
          in_view.push_back(joined("line", program, name, last.front()->profile.name,
                                   last.back()->profile.name, steps.front(), bytes));
        }
      }
      fleet_options options;
      options.of = of;
      options.runs = count;
      const auto answer = growth_of(store_, runs_, options, error_);
      ASSERT_TRUE(answer) << error_;
      const auto found = rows_of(*answer);
      EXPECT_EQ(sorted(found), sorted(expected)) << name_of(of) << ' ' << count;
      if (of == measure::leaked && count == 5) {
        EXPECT_EQ(sorted(rows("SELECT * FROM fleet_growth WHERE key = 'line'")), sorted(in_view));
      }
      const auto planted = std::count_if(found.begin(), found.end(), [](const std::string& row) {
        return row.starts_with(programs[1]) && row.ends_with(growing_line);
      });
      if (of == measure::allocated) continue;
      EXPECT_EQ(planted, count <= 20 ? 1 : 0) << count;
    }
  }
}

TEST_F(Fleet, SaysWhatCannotBeRead) {
  ASSERT_NO_FATAL_FAILURE(generate({9}));
  store_.close();
  ASSERT_TRUE(store_.open(file(), open_mode::create, error_));
  const auto fails = [&](const auto& ask) {
    error_.clear();
    return !ask() && !error_.empty();
  };
  const auto exec = [&](const char* sql) { return store_.connection().exec(sql); };
  const fleet_options options;
  ASSERT_TRUE(exec("DROP VIEW fleet_by_line"));
  EXPECT_TRUE(fails([&] { return fleet::peaks_of(store_, options, error_); }));
  EXPECT_TRUE(fails([&] { return first_leaks_of(store_, runs_, options, error_); }));
  fleet_options of_two;
  of_two.runs = 2;
  EXPECT_TRUE(fails([&] { return growth_of(store_, runs_, of_two, error_); }));
  const auto read = [&] { return fleet::fleet_runs().read(store_, "release", error_); };
  EXPECT_TRUE(read());
  ASSERT_TRUE(exec("DROP VIEW labels"));
  EXPECT_TRUE(fails(read));
  ASSERT_TRUE(exec("CREATE VIEW labels AS SELECT 'r' AS run, 'k' AS key, 'v' AS value"));
  EXPECT_TRUE(read());
  ASSERT_TRUE(exec("DROP VIEW fleet_trace"));
  EXPECT_TRUE(fails(read));
}

// One line of a small run for each way to change from run to run.
TEST_F(Fleet, GrowthIsGrowthAtEveryStep) {
  const struct {
    const char* line;
    std::uint64_t leaked[4];
    bool of_three, of_four;
  } cases[] = {
      {"always", {1, 2, 3, 4}, true, true},        {"from nothing", {0, 1, 2, 9}, true, true},
      {"late", {5, 1, 2, 3}, true, false},         {"new", {0, 0, 1, 2}, true, false},
      {"newest", {0, 0, 0, 1}, false, false},      {"equal once", {1, 2, 2, 3}, false, false},
      {"once less", {1, 3, 2, 4}, false, false},   {"gone", {1, 2, 3, 0}, false, false},
      {"gone between", {1, 0, 2, 3}, true, false}, {"level", {7, 7, 7, 7}, false, false}};
  for (int n = 0; n < 4; ++n) {
    run_profile run = small_run("run" + std::to_string(n), 0);
    profile& p = run.traces[0];
    p.groups = {};
    p.program = "app";
    for (const auto& c : cases) {
      block_group g;
      g.line = static_cast<std::uint32_t>(p.lines.size());
      g[figure::live] = {1, c.leaked[n], c.leaked[n]};
      p.lines.emplace_back(c.line);
      if (c.leaked[n] > 0) p.groups.push_back(g);
    }
    ASSERT_EQ(save(run), save_result::saved) << error_;
    p.run = run.name = "other" + std::to_string(n);
    p.program = "seldom";
    if (n > 1) continue;
    ASSERT_EQ(save(run), save_result::saved) << error_;
  }
  ASSERT_NO_FATAL_FAILURE(open());
  const auto grown = [&](std::size_t runs) {
    fleet_options options;
    options.runs = runs;
    const auto answer = growth_of(store_, runs_, options, error_);
    EXPECT_TRUE(answer) << error_;
    texts names;
    for (const auto& row : answer->rows) {
      EXPECT_EQ(std::get<std::string>(row[0]), "app");
      names.push_back(std::get<std::string>(row[6]));
    }
    return sorted(names);
  };
  texts of_three, of_four;
  for (const auto& c : cases) {
    if (c.of_three) of_three.emplace_back(c.line);
    if (c.of_four) of_four.emplace_back(c.line);
  }
  EXPECT_EQ(grown(3), sorted(of_three));
  EXPECT_EQ(grown(4), sorted(of_four));
  EXPECT_EQ(grown(5), texts());
}

}  // namespace
}  // namespace kiv::test
