#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "profile/profile_trace.h"
#include "rows/profile_from_rows.h"
#include "support/run_trace.h"
#include "support/stories.h"

// Profiles straight from traces, held against the tables of the same traces and against traces
// whose figures are plain to see.

namespace kiv::test {
namespace {

profile profile_of(const std::string& header) {
  profile made;
  std::string error;
  EXPECT_TRUE(profile_trace(header, made, error)) << error;
  return made;
}

profile profile_of(const trace& t) {
  const temp_dir dir;
  EXPECT_TRUE(t.write(dir.path(), "./elsewhere"));  // found beside the header all the same
  return profile_of(dir / t.header_name());
}

// Where blocks come from, as far as rows know it.
using place = std::tuple<bool, std::string, std::string, std::string, std::string, std::string>;
using figures = std::array<amount, figure_count>;

std::map<place, figures> by_place(const profile& of) {
  std::map<place, figures> sums;
  for (const block_group& group : of.groups) {
    // Rows of the default process have no context.
    const std::string query = group.process == 0 ? "" : of.queries[group.query];
    figures& sum = sums[{group.no_free, of.ids[group.id].name, of.colors[group.color].name,
                         of.lines[group.line], of.processes[group.process].name, query}];
    for (std::size_t i = 0; i < figure_count; ++i) sum[i] += group.figures[i];
  }
  return sums;
}

std::string text_of(const std::map<place, figures>& sums) {
  std::string text;
  for (const auto& [from, figure] : sums) {
    const auto& [no_free, id, color, line, process, query] = from;
    text += std::string(no_free ? "nf " : "wf ") + id + " " + color + " " + line + " " + process +
            " [" + query + "]";
    for (const amount& one : figure) {
      text += " " + std::to_string(one.blocks) + ":" + std::to_string(one.bytes) + ":" +
              std::to_string(one.tot_bytes);
    }
    text += "\n";
  }
  return text;
}

// The profile of the only trace in a directory, from the tables that kiv writes there.
profile profile_by_rows(const std::string& dir) {
  run_kiv(dir, {"-R", "."});
  std::string error;
  rows::import_plan plan;
  EXPECT_TRUE(rows::make_import_plan({dir}, plan, error)) << error;
  run_profile run;
  std::vector<std::string> rejected;
  EXPECT_TRUE(rows::profile_from_rows(plan.runs.at(0), {}, run, rejected, error)) << error;
  EXPECT_TRUE(rejected.empty());
  return run.traces.at(0);
}

void expect_rows_agree(const std::string& dir, const std::string& header) {
  const profile by_rows = profile_by_rows(dir), direct = profile_of(header);
  EXPECT_EQ(text_of(by_place(by_rows)), text_of(by_place(direct)));
  EXPECT_EQ(by_rows.records, direct.records);
  EXPECT_EQ(by_rows.peak.live, direct.peak.live);
  EXPECT_EQ(by_rows.peak.record, direct.peak.record);
  EXPECT_EQ(by_rows.peak.time, direct.peak.time);
  EXPECT_EQ(by_rows.heap_bytes, direct.heap_bytes);
  EXPECT_EQ(by_rows.gap_bytes, direct.gap_bytes);
}

TEST(Profile, TablesAndTraceFillTheSameGroups) {
  std::vector<story> stories = clean_stories();
  stories.insert(stories.end(), damaged_stories().begin(), damaged_stories().end());
  for (unsigned seed = 1; seed <= 8; ++seed) {
    stories.push_back({"random", [=](trace& t) { random_operations(t, seed, 1500); }});
  }
  for (const story& one : stories) {
    // Texts with separators are the rows' own matter, and of a process number that was used twice
    // the rows know the later process only.
    if (one.name == "sql_brackets" || one.name == "hosk_calls") continue;
    if (one.name == "announced_twice") continue;
    SCOPED_TRACE(one.name);
    trace t;
    one.tell(t);
    const temp_dir dir;
    ASSERT_TRUE(t.write(dir.path(), "."));
    expect_rows_agree(dir.path(), dir / t.header_name());
  }
  for (const std::string sample : {"MIX", "SQL1"}) {
    SCOPED_TRACE(sample);
    const temp_dir dir;
    std::filesystem::copy(KIV_SOURCE_DIR "/samples/" + sample, dir.path() + "/" + sample);
    for (const auto& file : std::filesystem::directory_iterator(dir / sample)) {
      if (file.path().extension() != ".kivhdr") continue;
      run_kiv(dir.path(), {"-R", sample});
      std::string error;
      rows::import_plan plan;
      ASSERT_TRUE(rows::make_import_plan({dir / sample}, plan, error)) << error;
      run_profile run;
      std::vector<std::string> rejected;
      ASSERT_TRUE(rows::profile_from_rows(plan.runs.at(0), {}, run, rejected, error)) << error;
      EXPECT_EQ(text_of(by_place(run.traces.at(0))), text_of(by_place(profile_of(file.path()))));
    }
  }
}

std::string path_text(const profile& of, std::uint32_t path) {
  if (path == 0) return {};
  const call_path& node = of.paths[path];
  const std::string above = path_text(of, node.parent);
  return above + (above.empty() ? "" : " > ") + of.functions[node.function].name;
}

TEST(Profile, BlocksBelongToTheCallPathThatMadeThem) {
  trace t;
  t.proc(7, "server").special(7, 0, "main").schedule(0, 7).reserve(3, "oic:orders").object(3);
  t.function(3, 1, "take").function(3, 2, "close").link(7, 3).hashloc(5, "a.c:1");
  t.malloc_wf(3, 0, 16, 1, 8, 5);
  t.flow_in(7, 0, 3, 1)
      .malloc_wf(3, 0, 32, 2, 8, 5)
      .flow_in(3, 1, 3, 2)
      .malloc_wf(3, 0, 48, 4, 8, 5);
  t.flow_out().malloc_wf(3, 0, 64, 8, 8, 5).flow_in(3, 1, 3, 2).malloc_wf(3, 0, 80, 16, 8, 5);
  t.realloc(3, 0, 16, 32, 32, 5).flow_out().flow_out().malloc_wf(3, 0, 96, 64, 8, 5);
  const profile made = profile_of(t);
  std::map<std::string, std::uint64_t> live;
  for (const block_group& group : made.groups) {
    live[path_text(made, group.path)] += group[figure::live].bytes;
  }
  const std::map<std::string, std::uint64_t> expected = {
      {"", 32}, {"main > take", 10}, {"main > take > close", 20}, {"main", 64}};
  EXPECT_EQ(live, expected);
  EXPECT_TRUE(made.complete());
}

TEST(Profile, TheStatementOfABracketIsKnownWhenItEnds) {
  trace t;
  t.reserve(1, "pool").query_in(0, 'p', "select").malloc_wf(1, 0, 16, 1, 8).free(1, 0, 16);
  t.malloc_wf(1, 0, 16, 2, 8).query_out(5).malloc_wf(1, 0, 32, 4, 8);
  t.query_in(0, 'b').malloc_wf(1, 0, 48, 8, 8).free(1, 0, 16).malloc_wf(1, 0, 16, 16, 16);
  t.query_out(5).free(1, 0, 48).query_in(0, 'b').malloc_wf(1, 0, 64, 32, 32);
  t.query_in(0, 'b').malloc_wf(1, 0, 80, 64, 64).query_out(6);
  const profile made = profile_of(t);
  std::map<std::string, std::pair<std::uint64_t, std::uint64_t>> live;  // made and live bytes
  for (const block_group& group : made.groups) {
    auto& [all, left] = live[made.queries[group.query]];
    all += group[figure::made].bytes;
    left += group[figure::live].bytes;
  }
  EXPECT_EQ(live["select"], std::pair(std::uint64_t{1 + 2 + 8 + 16}, std::uint64_t{16}));
  EXPECT_EQ(live[made.queries[0]], std::pair(std::uint64_t{4 + 32 + 64}, std::uint64_t{100}));
}

// Every step's figures against a model that keeps all records.
TEST(Profile, TheTimelineIsBoundedAndKeepsHighestAndLast) {
  trace t;
  t.reserve(1, "one").reserve(2, "two");
  std::mt19937 engine(3);
  const auto random = [&] { return static_cast<std::uint32_t>(engine()); };
  std::vector<std::array<std::uint64_t, 3>> live{{0, 0, 0}};  // after each record: all, by id
  std::vector<std::pair<std::uint32_t, std::uint32_t>> blocks;
  constexpr std::size_t records = 4'321;
  for (std::uint32_t i = 1; i <= records; ++i) {
    auto now = live.back();
    if (blocks.empty() || random() % 5 < 3) {
      const std::uint32_t id = 1 + random() % 2, size = 1 + random() % 1000;
      t.malloc_wf(id, 0, std::int64_t{16} * i, size, size);
      now[0] += size;
      now[id] += size;
      blocks.emplace_back(id, i);
    } else {
      std::swap(blocks[random() % blocks.size()], blocks.back());
      const auto [id, made] = blocks.back();
      blocks.pop_back();
      const std::uint64_t size = live[made][0] - live[made - 1][0];
      t.free(id, 0, std::int64_t{16} * made);
      now[0] -= size;
      now[id] -= size;
    }
    live.push_back(now);
  }
  const profile made = profile_of(t);
  ASSERT_GT(made.timeline.size(), 400U);
  ASSERT_LE(made.timeline.size(), 1'000U);
  std::map<std::string, std::uint64_t> by_id;
  std::size_t from = 1;
  for (const timeline_step& step : made.timeline) {
    const std::size_t last = step.last_record;
    std::uint64_t highest = 0;
    for (std::size_t i = from; i <= last; ++i) highest = std::max(highest, live[i][0]);
    EXPECT_EQ(step.highest_bytes, highest);
    EXPECT_EQ(step.last_bytes, live[last][0]);
    for (const id_level& level : step.changed) by_id[made.ids[level.id].name] = level.bytes;
    EXPECT_EQ(by_id["one"], live[last][1]);
    EXPECT_EQ(by_id["two"], live[last][2]);
    from = last + 1;
  }
  EXPECT_EQ(from, records + 1);
}

std::string losses_of(const profile& of) {
  std::string text;
  for (const loss& one : of.losses) {
    text += std::to_string(one.count) + " " + one.what + " (" + one.first + ")\n";
  }
  return text;
}

TEST(Profile, EveryLossHasANameAndAPlace) {
  const auto base = [] {
    trace t;
    return t.reserve(1, "pool").malloc_wf(1, 0, 16, 8, 8);
  };
  const struct {
    trace t;
    std::string losses;
  } cases[] = {
      {base().free(1, 0, 16), ""},
      {base().free(1, 0, 32).free(1, 0, 48), "2 frees without a block (record 3 in FILE)\n"},
      {base().realloc(1, 0, 32, 4, 4), "1 resizes without a block (record 3 in FILE)\n"},
      {base().malloc_wf(1, 0, 16, 4, 4), "1 allocations at a live address (record 3 in FILE)\n"},
      {base().free_id(1, 9, 0), "1 totals of ids that differ (record 3 in FILE)\n"},
      {base().bad_size(9).schedule(0, 0).raw(std::string(1, '\0')),
       "1 records out of sync (record 3 in FILE)\n"},
      {base().raw(std::string("E\0\0", 3)), "1 records of unknown type (record 3 in FILE)\n"},
      {base().unclosed(), "1 header not closed (HEADER)\n"},
      {base().recorded_size(0, "9999"),
       "1 data files shorter than recorded (FILE: 55 of 9999 bytes)\n"},
  };
  for (const auto& one : cases) {
    const temp_dir dir;
    ASSERT_TRUE(one.t.write(dir.path()));
    std::string expected = one.losses;
    for (const auto& [word, path] : {std::pair("FILE", dir / one.t.data_name(0)),
                                     std::pair("HEADER", dir / one.t.header_name())}) {
      if (const auto at = expected.find(word); at != std::string::npos) {
        expected.replace(at, std::string(word).size(), path);
      }
    }
    EXPECT_EQ(losses_of(profile_of(dir / one.t.header_name())), expected);
  }
}

TEST(Profile, ACutTraceIsNeverComplete) {
  trace t;
  random_operations(t, 9, 300);
  const std::string whole = t.data();
  const auto recorded = std::to_string(whole.size());
  EXPECT_EQ(losses_of(profile_of(t)).find("shorter"), std::string::npos);
  for (std::size_t size = 0; size < whole.size(); size += 1 + whole.size() / 97) {
    t.recorded_size(0, recorded).data().assign(whole, 0, size);
    const profile cut = profile_of(t);
    EXPECT_FALSE(cut.complete()) << size;
    EXPECT_NE(losses_of(cut).find("shorter than recorded"), std::string::npos) << size;
  }
}

}  // namespace
}  // namespace kiv::test
