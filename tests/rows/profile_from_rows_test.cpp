#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <numeric>

#include "rows_fixture.h"
#include "support/stories.h"

namespace kiv::test {
namespace {

// A block with all that ever happened to it.
struct known_block {
  std::size_t row = 0;                                                  // of `memory`, that made it
  std::vector<std::pair<std::int64_t, std::int64_t>> sizes, tot_sizes;  // from which record on
  std::int64_t end = 0;                                                 // 0: never
  char end_type = 0;

  std::int64_t made() const { return sizes.front().first; }
  // At the end of a record.
  amount at(std::int64_t record) const {
    amount a;
    if (made() > record || (end != 0 && end <= record)) return a;
    a.blocks = 1;
    for (const auto& [from, size] : sizes) {
      if (from <= record) a.bytes = static_cast<std::uint64_t>(size);
    }
    for (const auto& [from, size] : tot_sizes) {
      if (from <= record) a.tot_bytes = static_cast<std::uint64_t>(size);
    }
    return a;
  }
};

// Gathers the blocks of one trace from its rows, without any books.
class block_list {
 public:
  explicit block_list(const run_result& run) : memory(run.rows("memory")) {
    const table freemem = run.rows("freemem");
    std::map<std::int64_t, std::size_t> by_record;  // the present record of a block
    std::map<std::int64_t, std::vector<std::size_t>> ends;
    for (std::size_t i = 0; i < freemem.size(); ++i) {
      ends[freemem.number(i, "free_rec")].push_back(i);
    }
    for (std::size_t i = 0; i < memory.size(); ++i) {
      const std::int64_t rec = memory.number(i, "rec");
      const std::string_view type = memory.text(i, "type");
      if (type == "r" && memory.number(i, "linked_rec") == 0) continue;
      last = rec;
      for (const std::size_t e : ends[rec]) {
        const std::int64_t made_by = freemem.number(e, "alloc_rec");
        known_block& b = blocks.at(by_record.at(made_by));
        if (type == "r") {
          b.sizes.emplace_back(rec, memory.number(i, "size"));
          b.tot_sizes.emplace_back(rec, memory.number(i, "tot_size"));
          by_record[rec] = by_record.at(made_by);
        } else {
          b.end = rec;
          b.end_type = freemem.text(e, "type")[0];
        }
      }
      if (type != "a" && type != "n") continue;
      by_record[rec] = blocks.size();
      known_block& b = blocks.emplace_back();
      b.row = i;
      b.sizes.emplace_back(rec, memory.number(i, "size"));
      b.tot_sizes.emplace_back(rec, memory.number(i, "tot_size"));
    }
    std::map<std::int64_t, std::int64_t> changes;
    for (const auto& b : blocks) {
      std::int64_t size = 0;
      for (const auto& [from, next] : b.sizes) {
        changes[from] += next - size;
        size = next;
      }
      if (b.end != 0) changes[b.end] -= size;
    }
    std::int64_t live = 0;
    for (const auto& [rec, change] : changes) {
      live += change;
      if (live > peak) {
        peak = live;
        peak_record = rec;
      }
    }
  }

  table memory;
  std::vector<known_block> blocks;
  std::int64_t last = 0, peak = 0, peak_record = 0;
};

using figures = std::array<amount, figure_count>;

class ProfileFromRows : public rows_test {
 protected:
  // What a group is called, by a column of `memory` and the table that names its numbers.
  static std::function<std::string(std::size_t)> namer(const block_list& list,
                                                       const run_result& run,
                                                       const std::string& key) {
    auto names = std::make_shared<std::map<std::int64_t, std::string>>();
    if (key == "line") {
      const table t = run.rows("hashloc");
      for (std::size_t i = 0; i < t.size(); ++i) {
        (*names)[t.number(i, "location")] = t.text(i, "source_line");
      }
      return [&list, names](std::size_t row) {
        const auto found = names->find(list.memory.number(row, "location"));
        return found == names->end() ? "unknown line" : found->second;
      };
    }
    if (key == "id") {
      const table t = run.rows("malid");
      for (std::size_t i = 0; i < t.size(); ++i) {
        std::string name(t.text(i, "category"));
        name += ' ' + std::string(t.text(i, "description"));
        if ((t.text(i, "category") == "oic" || t.text(i, "category") == "dlock") &&
            !t.text(i, "reference").empty()) {
          name += ':' + std::string(t.text(i, "reference"));
        }
        if (t.text(i, "description").empty()) name = t.text(i, "reserve_type");
        (*names)[t.number(i, "malid")] = name;
      }
      return [&list, names](std::size_t row) {
        const auto found = names->find(list.memory.number(row, "malid"));
        return found == names->end() ? "unknown id" : found->second;
      };
    }
    return [&list](std::size_t row) { return std::string(list.memory.text(row, "pid")); };
  }

  static std::string name_in_profile(const profile& p, const block_group& g,
                                     const std::string& key) {
    if (key == "line") return p.lines[g.line];
    if (key == "id") return p.ids[g.id].name;
    return std::to_string(p.processes[g.process].pid);
  }

  // Every figure of every group, by three keys, and the number of blocks in the bars.
  static void expect_same(const run_result& written, const profile& p, const std::string& where) {
    const block_list list(written);
    EXPECT_EQ(p.peak.record, static_cast<std::uint64_t>(list.peak_record)) << where;
    EXPECT_EQ(p.peak.live.bytes, static_cast<std::uint64_t>(list.peak)) << where;
    EXPECT_EQ(p.records, static_cast<std::uint64_t>(list.last)) << where;
    for (const std::string key : {"line", "id", "process"}) {
      const auto name_of = namer(list, written, key);
      std::map<std::pair<std::string, bool>, figures> expected, actual;
      for (const auto& b : list.blocks) {
        const bool no_free = list.memory.text(b.row, "type") == "n";
        figures& f = expected[{name_of(b.row), no_free}];
        const auto count = [&](figure which, const amount& a) {
          f[static_cast<std::size_t>(which)] += a;
        };
        const amount made = b.at(b.made()), last = b.at(b.end == 0 ? list.last : b.end - 1);
        count(figure::made, made);
        count(figure::at_peak, b.at(list.peak_record));
        count(b.end == 0          ? figure::live
              : b.end_type == 'f' ? figure::freed
              : b.end_type == 'Z' ? figure::reset
              : no_free           ? figure::released
                                  : figure::left_with_id,
              last);
        if (b.end_type == 'f' && b.end - b.made() <= 100) count(figure::temporary, made);
      }
      for (const auto& g : p.groups) {
        figures& f = actual[{name_in_profile(p, g, key), g.no_free}];
        for (std::size_t i = 0; i < figure_count; ++i) f[i] += g.figures[i];
      }
      EXPECT_TRUE(actual == expected) << where << " by " << key;
    }
    std::map<bool, std::uint64_t> in_bars;
    for (const auto& h : p.histograms) {
      const bool size = h.of == distribution::size;
      in_bars[size] += h.blocks;
      if (!size) continue;
      EXPECT_GE(h.bytes, h.exponent < 0 ? 0 : h.blocks << h.exponent);
      EXPECT_LE(h.bytes, h.exponent < 0 ? 0 : h.blocks * ((2ull << h.exponent) - 1));
    }
    EXPECT_EQ(in_bars[true], list.blocks.size());
    EXPECT_EQ(in_bars[false], static_cast<std::size_t>(std::ranges::count_if(
                                  list.blocks, [](const auto& b) { return b.end != 0; })));
  }
};

TEST_F(ProfileFromRows, AgreesWithAListOfAllBlocks) {
  for (const std::string sample : {"MIX", "SQL1"}) {
    const run_result written = analyse(sample);
    const auto run = profile_of(dir_ / sample);
    ASSERT_TRUE(run) << error_;
    ASSERT_EQ(run->traces.size(), 1u);
    const profile& p = run->traces[0];
    EXPECT_EQ(p.losses.size(), 0u) << p.losses[0].what;
    EXPECT_FALSE(p.complete());
    EXPECT_GT(p.groups.size(), 5u);
    expect_same(written, p, sample);
  }
}

// What a broken writer leaves, too: no trace makes tables that are refused.
TEST_F(ProfileFromRows, TakesTheTablesOfEveryTrace) {
  std::vector<std::pair<std::string, std::function<void(trace&)>>> stories = {
      {"every record", every_record}, {"damaged", damaged}};
  for (std::uint32_t seed = 1; seed <= 30; ++seed) {
    stories.emplace_back("seed " + std::to_string(seed),
                         [seed](trace& t) { random_operations(t, seed, 600); });
  }
  for (const auto& [name, tell] : stories) {
    const temp_dir dir;
    trace t;
    tell(t);
    ASSERT_TRUE(t.write(dir / "T", "./T"));
    const run_result written = run_kiv(dir.path(), {"-R", "T"});
    const auto run = profile_of(dir / "T");
    ASSERT_TRUE(run) << name << ": " << error_;
    ASSERT_EQ(run->traces.size(), 1u) << name;
    expect_same(written, run->traces[0], name);
    EXPECT_NE(load(dir / "T", *run), store::save_result::failed) << name << ": " << error_;
  }
}

// Steps and marks say what was live at their records, by id; no step repeats a level.
TEST_F(ProfileFromRows, FollowsLiveMemoryOverTime) {
  for (const std::string sample : {"MIX", "SQL1"}) {
    const block_list list(analyse(sample));
    const auto run = profile_of(dir_ / sample);
    ASSERT_TRUE(run) << error_;
    const profile& p = run->traces[0];
    ASSERT_FALSE(p.timeline.empty());
    EXPECT_LE(p.timeline.size(), 1000u);
    EXPECT_EQ(p.timeline.back().last_record, p.records);
    std::uint64_t highest = 0;
    std::vector<std::uint64_t> levels(p.ids.size());
    std::size_t step_number = 0;
    for (const auto& step : p.timeline) {
      highest = std::max(highest, step.highest_bytes);
      for (const auto& c : step.changed) {
        EXPECT_NE(levels[c.id], c.bytes);
        levels[c.id] = c.bytes;
      }
      EXPECT_EQ(std::accumulate(levels.begin(), levels.end(), std::uint64_t{0}), step.last_bytes);
      if (step_number++ % 50 != 0) continue;
      amount live;
      for (const auto& b : list.blocks) live += b.at(static_cast<std::int64_t>(step.last_record));
      EXPECT_EQ(step.last_bytes, live.bytes) << step.last_record;
    }
    EXPECT_EQ(highest, p.peak.live.bytes);
    std::fill(levels.begin(), levels.end(), 0);
    for (const auto& mark : p.marks) {
      amount live;
      for (const auto& b : list.blocks) live += b.at(static_cast<std::int64_t>(mark.record));
      for (const auto& c : mark.changed) levels[c.id] = c.bytes;
      EXPECT_EQ(mark.live_bytes, live.bytes);
      EXPECT_EQ(mark.live_blocks, live.blocks);
      EXPECT_EQ(std::accumulate(levels.begin(), levels.end(), std::uint64_t{0}), live.bytes);
    }
    EXPECT_TRUE(sample != "MIX" || p.marks.size() > 1);
  }
}

TEST_F(ProfileFromRows, NamesWhatTheRowsName) {
  const std::string malid =
      row_of("malid", {{"malid", "5"},
                       {"reserve_type", "oic:a:b"},
                       {"category", "oic"},
                       {"description", "a"},
                       {"reference", "b"}}) +
      row_of("malid", {{"malid", "6"},
                       {"reserve_type", "oic:a:c"},
                       {"category", "oic"},
                       {"description", "a"},
                       {"reference", "c"}}) +
      row_of("malid", {{"malid", "7"}, {"reserve_type", "own text"}, {"category", "general"}}) +
      row_of("malid", {{"malid", "8"},
                       {"reserve_type", "proc:9:x"},
                       {"category", "proc"},
                       {"description", "x"},
                       {"reference", "9"}});
  const auto made = [](char type, int rec, const std::string& id, cells more) {
    more.emplace("malid", id);
    more.emplace("size", "10");
    more.emplace("tot_size", "16");
    more.emplace("global_live_size", std::to_string(10 * rec));
    return memory_row(type, rec, more);
  };
  write_run(
      "R",
      {{"memory.1", made('a', 1, "5",
                         {{"location", "100"},
                          {"pid", "9"},
                          {"depth", "1"},
                          {"callee_object", "3"},
                          {"callee_function", "-2"},
                          {"color", "2"},
                          {"query_seq", "4"}}) +
                        made('a', 2, "6",
                             {{"location", "101"},
                              {"pid", "9"},
                              {"depth", "1"},
                              {"callee_object", "3"},
                              {"callee_function", "1"}}) +
                        made('n', 3, "7",
                             {{"location", "102"},
                              {"pid", "8"},
                              {"depth", "3"},
                              {"callee_object", "77"},
                              {"callee_function", "1"}}) +
                        made('a', 4, "99", {{"callee_object", "3"}, {"query_seq", "5"}})},
       {"freemem.1", ""},
       {"malid.1", malid},
       {"color.1", row_of("color", {{"malid", "5"}, {"color", "2"}, {"color_name", "red"}})},
       // One line under two numbers.
       {"hashloc.1", row_of("hashloc", {{"location", "100"}, {"source_line", "a.c:1"}}) +
                         row_of("hashloc", {{"location", "101"}, {"source_line", "a.c:1"}})},
       {"process.1", row_of("process", {{"main_pid", "0"}, {"session_name", "defaultproc"}}) +
                         row_of("process", {{"pid", "9"}, {"session_name", "app"}})},
       {"arcs.1", row_of("arcs", {{"pid", "9"},
                                  {"arc", "1"},
                                  {"callee_object", "3"},
                                  {"callee_function", "-2"},
                                  {"callee_object_name", "lib"},
                                  {"callee_function_name", "f"}})},
       {"functions.1", row_of("functions", {{"object", "3"},
                                            {"function_number", "1"},
                                            {"object_name", "lib"},
                                            {"function_name", "g"}})},
       {"queryevents.1", row_of("queryevents", {{"seq", "4"}, {"qid", "1"}, {"type", "p"}})},
       {"queries.1",
        "R;1;9;1;1;" + some_time + ";" + some_time + ";" + some_time + ";SELECT a;\nFROM b<<>>\n"},
       {"runs.1", row_of("runs", {{"program", "prog"}})},
       {"sbrk.1", row_of("sbrk", {{"type", "S"},
                                  {"pid", "9"},
                                  {"depth", "1"},
                                  {"callee_object", "3"},
                                  {"callee_function", "1"},
                                  {"size_or_c_sbrk", "4096"},
                                  {"sbrk_total", "4096"}}) +
                      row_of("sbrk", {{"type", "G"},
                                      {"addr_or_l_sbrk", "100"},
                                      {"size_or_c_sbrk", "92"},
                                      {"sbrk_total", "4096"},
                                      {"gap_total", "18446744073709551608"}})},
       {"marker.1", row_of("marker", {{"rec", "4"}, {"type", "Record"}, {"subtype", "End"}})}});
  const auto run = profile_of(dir_.path());
  ASSERT_TRUE(run) << error_;
  const profile& p = run->traces.at(0);
  std::vector<std::string> groups;
  for (const auto& g : p.groups) {
    const auto& function = p.functions[p.paths[g.path].function];
    groups.push_back(std::string(g.no_free ? "nf" : "wf") + '|' + p.ids[g.id].name + '|' +
                     p.colors[g.color].name + '|' + p.lines[g.line] + '|' + function.object + ':' +
                     function.name + '|' + p.processes[g.process].name + '|' + p.queries[g.query]);
  }
  EXPECT_EQ(groups,
            (std::vector<std::string>{
                "wf|oic a:b|red|a.c:1|lib:f|app|SELECT a;\nFROM b",
                "wf|oic a:c|unknown colour|a.c:1|lib:g|app|(no finished SQL operation)",
                "nf|own text|unknown colour|unknown line|77:1|unknown process|(no finished SQL "
                "operation)",
                "wf|unknown id|unknown colour|unknown line|:|default process|(no finished SQL "
                "operation)"}));
  EXPECT_EQ(p.ids.back().name, "proc x");
  EXPECT_EQ(p.program, "prog");
  EXPECT_EQ(p.lines.size(), 2u);
  ASSERT_EQ(p.heap.size(), 2u);
  EXPECT_EQ(p.heap[0].bytes, 4096);
  EXPECT_EQ(p.functions[p.paths[p.heap[0].path].function].name, "g");
  EXPECT_EQ(p.heap[1].bytes, -8);
  EXPECT_EQ(p.heap_bytes, 4096u);
  EXPECT_EQ(p.gap_bytes, -8);
  EXPECT_TRUE(p.losses.empty());
}

// The maker keeps a block through its resizes; a block that was refused stays live.
TEST_F(ProfileFromRows, BooksResizesAndLosses) {
  const auto row = [](char type, int rec, int size, int linked, int live, int nf = 0) {
    return memory_row(type, rec,
                      {{"location", std::to_string(rec)},
                       {"size", std::to_string(size)},
                       {"tot_size", std::to_string(size + 1)},
                       {"linked_rec", std::to_string(linked)},
                       {"global_live_size", std::to_string(live)},
                       {"global_nf_size", std::to_string(nf)}});
  };
  std::string lines;
  for (int i = 1; i < 10; ++i) {
    lines += row_of("hashloc",
                    {{"location", std::to_string(i)}, {"source_line", "l" + std::to_string(i)}});
  }
  write_run("R",
            {{"memory.1", row('a', 1, 10, 0, 10) + row('r', 1, 99, 0, 10) + row('r', 2, 30, 1, 30) +
                              row('n', 3, 7, 0, 30, 7) + row('a', 4, 5, 0, 35, 7) +
                              row('r', 5, 20, 2, 25, 7) + row('f', 6, 0, 0, 25, 7) +
                              row('f', 7, 20, 5, 5, 7) + row('F', 8, 0, 0, 0, 0)},
             {"freemem.1",
              end_row(1, 2, 'r') + end_row(2, 5, 'r') + end_row(5, 7, 'f') + end_row(3, 8, 'F')},
             {"hashloc.1", lines},
             {"runs.1", row_of("runs", {})}});
  const auto run = profile_of(dir_.path());
  ASSERT_TRUE(run) << error_;
  const profile& p = run->traces.at(0);
  ASSERT_EQ(p.groups.size(), 3u);
  const block_group &resized = p.groups[0], &no_free = p.groups[1], &refused = p.groups[2];
  EXPECT_EQ(p.lines[resized.line], "l1");
  EXPECT_EQ(resized.resizes, 2u);
  EXPECT_EQ(resized[figure::made], (amount{1, 10, 11}));
  EXPECT_EQ(resized[figure::freed], (amount{1, 20, 21}));
  EXPECT_EQ(resized[figure::temporary], (amount{1, 10, 11}));
  EXPECT_EQ(resized[figure::at_peak], (amount{1, 30, 31}));
  EXPECT_EQ(no_free[figure::released], (amount{1, 7, 8}));
  EXPECT_EQ(no_free.leaked(), amount{});
  EXPECT_EQ(refused.leaked(), (amount{1, 5, 6}));
  EXPECT_EQ(p.peak.record, 4u);
  EXPECT_EQ(p.peak.live, (amount{3, 42, 45}));
  std::map<std::string, std::uint64_t> losses;
  for (const auto& l : p.losses) losses[l.what] = l.count;
  EXPECT_EQ(losses, (std::map<std::string, std::uint64_t>{
                        {"frees that found no block", 1},
                        {"resizes that found no block", 1},
                        {"bytes by which live memory in the rows differs from the blocks", 5},
                        {"the analysis did not come to the end of the trace", 1}}));
}

}  // namespace
}  // namespace kiv::test
