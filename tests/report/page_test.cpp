#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <sstream>

#include "report/html_page.h"
#include "report/json_reader.h"
#include "report/made_profile.h"
#include "report/page_data.h"
#include "report/page_json.h"

// What a page says must be true however much of it was put together.
namespace kiv::report {
namespace {

using test::json_value;
using test::made_profile;
using test::read_json;
using test::run_of;

const std::size_t usual_budget = page_options().budget;

struct made_page {
  std::string text;
  json_value json;
};

made_page page_of(const std::vector<run_profile>& runs, const page_options& options = {}) {
  std::vector<const run_profile*> shown;
  for (const auto& run : runs) shown.push_back(&run);
  page_data page;
  std::string error;
  EXPECT_TRUE(make_page_data(shown, options, page, error)) << error;
  std::ostringstream out;
  write_page_data(out, page);
  return {out.str(), read_json(out.str())};
}

// By measure: blocks and bytes.
using sums = std::array<std::pair<long long, long long>, measure_count>;

void add(sums& to, const sums& more) {
  for (std::size_t i = 0; i < measure_count; ++i) {
    to[i].first += more[i].first;
    to[i].second += more[i].second;
  }
}

sums sums_of(const block_group& group) {
  sums found;
  for (std::size_t i = 0; i < measure_count; ++i) {
    const amount what = measured(group, static_cast<measure>(i));
    found[i] = {what.blocks, what.bytes};
  }
  return found;
}

sums sums_of(const json_value& group) {
  sums found{};
  std::size_t at = 9;
  for (std::size_t i = 0; i < measure_count; ++i) {
    if ((group[8].number() >> i & 1) == 0) continue;
    found[i] = {group[at].number(), group[at + 1].number()};
    at += 2;
  }
  EXPECT_EQ(group.size(), at);
  return found;
}

// Sums by "key: name", of call paths with all that they call.
using sums_by_name = std::map<std::string, sums>;

std::string function_name(const profile_function& function) {
  return function.object + ":" + function.name;
}

// Worked out from the profile in the plainest way.
sums_by_name plain_sums(const run_profile& run) {
  sums_by_name all;
  for (const auto& trace : run.traces) {
    for (const block_group& group : trace.groups) {
      const sums counted = sums_of(group);
      const auto& id = trace.ids[group.id].name;
      add(all["id: " + id], counted);
      add(all["color: " + id + " / " + trace.colors[group.color].name], counted);
      add(all["line: " + trace.lines[group.line]], counted);
      add(all["process: " + trace.processes[group.process].name], counted);
      add(all["query: " + trace.queries[group.query]], counted);
      for (std::uint32_t node = group.path; node != 0; node = trace.paths[node].parent) {
        std::string path;
        for (std::uint32_t at = node; at != 0; at = trace.paths[at].parent) {
          path = " > " + function_name(trace.functions[trace.paths[at].function]) + path;
        }
        add(all["path:" + path], counted);
      }
    }
  }
  return all;
}

// The same from the page.
sums_by_name sums_in_page(const json_value& page, std::size_t run) {
  sums_by_name all;
  const std::pair<std::size_t, const char*> named[] = {
      {2, "id"}, {3, "color"}, {4, "line"}, {6, "process"}, {7, "query"}};
  const auto place = [](const json_value& number) {
    return static_cast<std::size_t>(number.number());
  };
  for (const auto& group : page["runs"][run]["groups"].elements) {
    const sums counted = sums_of(group);
    for (const auto& [at, key] : named) {
      add(all[key + (": " + page["names"][key][place(group[at])].scalar)], counted);
    }
    for (std::size_t node = place(group[5]); node != 0; node = place(page["paths"][node][0])) {
      std::string path;
      for (std::size_t at = node; at != 0; at = place(page["paths"][at][0])) {
        EXPECT_LT(place(page["paths"][at][0]), at) << "parents come first";
        path = " > " + page["names"]["function"][place(page["paths"][at][1])].scalar + path;
      }
      add(all["path:" + path], counted);
    }
  }
  return all;
}

void expect_figures(const json_value& report, const json_value& page_run, const std::string& what) {
  std::vector<sums> by_trace(report["traces"].size());
  for (const auto& group : page_run["groups"].elements) {
    add(by_trace.at(static_cast<std::size_t>(group[0].number())), sums_of(group));
  }
  for (std::size_t i = 0; i < measure_count; ++i) {
    for (std::size_t trace = 0; trace < by_trace.size(); ++trace) {
      const auto& figures = report["traces"][trace][measure_names[i]];
      EXPECT_EQ(by_trace[trace][i].first, figures["blocks"].number()) << what << measure_names[i];
      EXPECT_EQ(by_trace[trace][i].second, figures["bytes"].number()) << what << measure_names[i];
    }
  }
  ASSERT_EQ(report["lists"].size(), key_count * measure_count);
  for (const auto& list : report["lists"].elements) {
    for (const char* unit : {"blocks", "bytes", "tot_bytes"}) {
      long long sum = list["others"][unit].number(), of_traces = 0;
      for (const auto& row : list["rows"].elements) sum += row[unit].number();
      for (const auto& trace : report["traces"].elements) {
        of_traces += trace[list["of"].scalar][unit].number();
      }
      EXPECT_EQ(sum, list["total"][unit].number()) << what << list["by"].scalar;
      EXPECT_EQ(sum, of_traces) << what << list["by"].scalar;
    }
  }
}

// Whether figures add up, and every name that is left has all that it has in the run.
void expect_true(const std::vector<run_profile>& runs, const made_page& made,
                 const std::string& what) {
  for (std::size_t run = 0; run < runs.size(); ++run) {
    expect_figures(made.json["runs"][run], made.json["page"]["runs"][run], what);
    const auto plain = plain_sums(runs[run]);
    for (const auto& [name, found] : sums_in_page(made.json["page"], run)) {
      if (name.ends_with("(others)")) continue;
      const auto expected = plain.find(name);
      ASSERT_NE(expected, plain.end()) << what << name;
      EXPECT_EQ(found, expected->second) << what << name;
    }
  }
}

// So many groups over lists of names of these sizes, of random amounts, most of them small.
struct made_size {
  std::uint32_t groups, lines, paths, ids = 20, queries = 30;
  std::size_t name_length = 0;  // of all names, at least
  std::uint64_t steps = 1000;   // of the timeline
};

profile random_trace(const made_size& size, std::uint32_t seed, std::int64_t pid) {
  std::mt19937 random(seed);
  const auto any = [&](std::uint32_t count) {
    return static_cast<std::uint32_t>(random() % count);
  };
  const auto name = [&](const std::string& what, std::uint32_t i) {
    const std::string ending = std::to_string(i);
    return what + std::string(size.name_length, 'x') + ending;
  };
  made_profile made("R", pid);
  profile& trace = made.trace;
  for (std::uint32_t i = 1; i < size.lines; ++i) trace.lines.push_back(name("file.c:", i));
  for (std::uint32_t i = 1; i < size.ids; ++i) {
    trace.ids.push_back({i, name("id ", i), ""});
    trace.colors.push_back({i, 1, "small"});
    trace.histograms.push_back({distribution::size, false, i, 4, i, std::uint64_t{16} * i});
    trace.histograms.push_back(
        {distribution::lifetime, true, i, -1, std::uint64_t{2} * i, std::uint64_t{16} * i});
  }
  for (std::uint32_t i = 1; i < size.queries; ++i) trace.queries.push_back(name("SELECT ", i));
  for (std::uint32_t i = 1; i < 100; ++i) trace.functions.push_back({"app", name("f", i)});
  for (std::uint32_t i = 1; i < size.paths; ++i) {
    trace.paths.push_back({any(std::min(i, size.paths / 2)), 1 + i % 99});
  }
  for (std::uint32_t i = 0; i < size.groups; ++i) {
    block_group group;
    group.no_free = any(4) == 0;
    group.id = any(size.ids);
    group.color = group.id;
    group.line = any(size.lines);
    group.path = any(size.paths);
    group.query = any(size.queries);
    const std::uint64_t bytes = std::uint64_t{1} << any(24), blocks = 1 + any(10);
    group[figure::made] = {blocks + 3, bytes * 3, bytes * 4};
    for (const auto which :
         {figure::left_with_id, figure::live, figure::at_peak, figure::temporary}) {
      if (any(3) == 0) group[which] = {blocks, bytes, bytes + 8};
    }
    trace.groups.push_back(group);
  }
  for (std::uint64_t i = 1; i <= 1000; ++i) {
    trace.timeline.push_back({i * 10,
                              "2023-11-14 22:13:20.005",
                              i % 7 * 1000 + 500,
                              i % 7 * 1000,
                              i * 100,
                              {{1 + any(size.ids - 1), any(1000)}}});
    if (i <= 150) trace.marks.push_back({i, "2023-11-14 22:13:20.005", "mark", i, i, {}});
  }
  return trace;
}

TEST(Page, SumsAreExactHoweverMuchIsPutTogether) {
  const made_size size{.groups = 3000, .lines = 200, .paths = 400};
  std::vector<run_profile> one = {
      run_of("A", {random_trace(size, 1, 1), random_trace(size, 2, 2)})};
  auto two = one;
  two.push_back(run_of("B", {random_trace(size, 3, 1)}));
  for (const auto& [runs, budget] : {std::pair(&one, std::size_t{9'000'000}),
                                     {&one, usual_budget},
                                     {&one, 200'000},
                                     {&one, 60'000},
                                     {&one, 1000},
                                     {&two, usual_budget},
                                     {&two, 300'000},
                                     {&two, 80'000}}) {
    const std::string what =
        std::to_string(runs->size()) + " runs in " + std::to_string(budget) + ": ";
    const auto made = page_of(*runs, {.budget = budget});
    expect_true(*runs, made, what);
    if (budget >= 60'000) {
      EXPECT_LT(made.text.size(), budget + budget / 20) << what;
    }
    EXPECT_EQ(made.json["page"]["left_out"].size() > 0, budget < 9'000'000) << what;
  }
}

TEST(Page, LeavesNothingOutWhileThereIsRoom) {
  const std::vector<run_profile> runs = {
      run_of("A", {random_trace({.groups = 100, .lines = 20, .paths = 50, .ids = 5}, 1, 1)})};
  const auto made = page_of(runs);
  expect_true(runs, made, "");
  EXPECT_EQ(sums_in_page(made.json["page"], 0), plain_sums(runs[0]));
  for (const auto& list : made.json["runs"][0]["lists"].elements) {
    EXPECT_EQ(list["others"].size(), 0u) << list["by"].scalar;
  }
}

TEST(Page, IsSmallHoweverLargeTheTraceIs) {
  const struct {
    const char* what;
    std::vector<profile> traces;
    std::size_t runs;
  } cases[] = {
      {"many groups, lines and paths",
       {random_trace({.groups = 200'000, .lines = 100'000, .paths = 100'000, .queries = 5000}, 1,
                     1)},
       1},
      {"long names",
       {random_trace({.groups = 2000, .lines = 500, .paths = 300, .name_length = 60'000}, 1, 1)},
       2},
      {"many traces",
       [] {
         std::vector<profile> traces;
         for (std::uint32_t i = 1; i <= 300; ++i) {
           traces.push_back(
               random_trace({.groups = 50, .lines = 50, .paths = 50, .steps = 200}, i, i));
         }
         return traces;
       }(),
       2},
  };
  for (const auto& [what, traces, count] : cases) {
    const std::vector<run_profile> runs(count, run_of("A", traces));
    const auto made = page_of(runs);
    EXPECT_LT(made.text.size(), usual_budget + usual_budget / 20) << what;
    EXPECT_GT(made.text.size(), usual_budget / 2) << what << ": room was left";
    for (std::size_t run = 0; run < count; ++run) {
      expect_figures(made.json["runs"][run], made.json["page"]["runs"][run], what);
    }
  }
}

TEST(Page, ComparesRunsBySameNames) {
  // In B line 7 has grown, which is small, and line 900 is new; the rest is large and alike.
  std::vector<run_profile> runs;
  for (const char* name : {"A", "B"}) {
    made_profile made(name);
    for (int line = 0; line < 900; ++line) {
      const bool grown = name[0] == 'B' && line == 7;
      const std::uint64_t bytes = line == 7 ? (grown ? 20 : 10) : 100'000;
      made.leak({.line = "a.c:" + std::to_string(line)}, 1, bytes);
    }
    if (name[0] == 'B') made.leak({.line = "a.c:900"}, 1, 5);
    runs.push_back(run_of(name, {made.trace}));
  }
  const auto made = page_of(runs, {.budget = 100'000});
  expect_true(runs, made, "");
  const auto rows = [&](std::size_t run) {
    std::map<std::string, long long> found;
    for (const auto& list : made.json["runs"][run]["lists"].elements) {
      if (list["by"].scalar != "line" || list["of"].scalar != "leaked") continue;
      EXPECT_GT(list["others"]["names"].number(), 0);
      for (const auto& row : list["rows"].elements) {
        found[row["name"].scalar] = row["bytes"].number();
      }
    }
    return found;
  };
  auto before = rows(0), after = rows(1);
  EXPECT_EQ(before["a.c:7"], 10);
  EXPECT_EQ(after["a.c:7"], 20) << "what changed has a row however small it is";
  EXPECT_EQ(after["a.c:900"], 5);
  after.erase("a.c:900");
  std::vector<std::string> names_before, names_after;
  for (const auto& [name, bytes] : before) names_before.push_back(name);
  for (const auto& [name, bytes] : after) names_after.push_back(name);
  EXPECT_EQ(names_before, names_after) << "no other row is in one run only";
}

TEST(Page, MergedStepsKeepTheHighestAndTheLast) {
  made_profile made;
  made.leak({.id = "one"}, 1, 1).leak({.id = "two"}, 1, 1);
  for (std::uint64_t i = 1; i <= 1000; ++i) {
    made.trace.timeline.push_back({i, "t" + std::to_string(i), i == 401 ? 9999 : i, i, 2 * i, {}});
    if (i % 100 == 0) made.trace.timeline.back().changed = {{1, i}, {2, 7}};
  }
  const auto made_page = page_of({run_of("A", {made.trace})}, {.budget = 20'000});
  const auto& timeline = made_page.json["page"]["runs"][0]["traces"][0]["timeline"];
  const std::size_t steps = timeline["records"].size();
  ASSERT_GT(steps, 1u);
  ASSERT_LT(steps, 500u);
  ASSERT_GE(timeline["ids"].size(), 1u);
  EXPECT_EQ(
      made_page.json["page"]["names"]["id"][static_cast<std::size_t>(timeline["ids"][0].number())]
          .scalar,
      "one");
  long long highest = 0, level = 0;
  for (std::size_t i = 0; i < steps; ++i) {
    const long long record = timeline["records"][i].number();
    highest = std::max(highest, timeline["highest"][i].number());
    level = record / 100 * 100;
    EXPECT_EQ(timeline["times"][i].scalar, "t" + std::to_string(record));
    EXPECT_EQ(timeline["last"][i].number(), record);
    EXPECT_EQ(timeline["heap"][i].number(), 2 * record);
    EXPECT_EQ(timeline["levels"][0][i].number(), level) << record;
  }
  EXPECT_EQ(timeline["records"][steps - 1].number(), 1000);
  EXPECT_EQ(highest, 9999);
}

TEST(Page, FiltersHoldForFiguresListsAndGroups) {
  const std::vector<run_profile> runs = {run_of(
      "A", {made_profile().leak({.line = "a.c:1"}, 2, 20).leak({.line = "b.c:1"}, 3, 50).trace})};
  const auto made = page_of(runs, {.filter = {.focus = "^b"}});
  expect_figures(made.json["runs"][0], made.json["page"]["runs"][0], "");
  EXPECT_EQ(made.json["runs"][0]["traces"][0]["leaked"]["bytes"].number(), 50);
  EXPECT_EQ(made.json["runs"][0]["filter"]["focus"].scalar, "^b");
  EXPECT_EQ(made.json["page"]["left_out"].size(), 1u) << "the timeline is of all blocks";
}

TEST(Page, HostileNamesStayTextAndApart) {
  const std::vector<std::string> names = {"</script><script>alert(1)</script>",
                                          "<!-- <img onerror=x>",
                                          "&lt;",
                                          "\"quoted\\\" 'too'",
                                          "line\u2028end\u2029",
                                          "no UTF-8 \xff",
                                          "no UTF-8 \xfe",
                                          "(others)",
                                          "@DATA@",
                                          "@TITLE@",
                                          std::string("zero\0byte", 9)};
  made_profile made("</title><script>");
  std::uint64_t bytes = 1;
  for (const auto& name : names) {
    made.leak({.line = name,
               .path = {name + ":" + name},
               .id = name,
               .color = name,
               .process = name,
               .query = name},
              1, bytes *= 2);
  }
  made.trace.program = names[0];
  made.trace.marks.push_back({1, "", names[0], 0, 0, {}});
  const std::vector<run_profile> runs = {run_of(made.trace.run, {made.trace})};
  std::vector<const run_profile*> shown = {&runs[0]};
  page_data page;
  std::string error;
  ASSERT_TRUE(make_page_data(shown, {}, page, error)) << error;
  std::ostringstream out;
  write_html_page(out, page);
  const std::string html = out.str();
  const std::string begin = R"(<script type="application/json" id="kiv-report">)";
  const std::size_t at = html.find(begin) + begin.size();
  ASSERT_NE(html.find(begin), std::string::npos);
  const std::string data = html.substr(at, html.find("</script>", at) - at);
  for (const char* forbidden : {"<", ">", "&", "\u2028", "\u2029"}) {
    EXPECT_EQ(data.find(forbidden), std::string::npos) << forbidden;
  }
  EXPECT_NE(html.find("<title>&lt;/title&gt;&lt;script&gt;"), std::string::npos);
  const auto json = read_json(data);
  expect_figures(json["runs"][0], json["page"]["runs"][0], "");
  for (const char* key : {"id", "line", "process", "query", "color", "function"}) {
    std::vector<std::string> found;
    for (const auto& name : json["page"]["names"][key].elements) found.push_back(name.scalar);
    std::ranges::sort(found);
    EXPECT_EQ(std::ranges::adjacent_find(found), found.end()) << key << ": names are told apart";
    EXPECT_EQ(std::ranges::count(found, "(others)"), 0) << key;
  }
  std::vector<std::string> in_list, in_names;
  for (const auto& row : json["runs"][0]["lists"][2]["rows"].elements) {
    in_list.push_back(row["name"].scalar);
  }
  for (const auto& name : json["page"]["names"]["line"].elements) in_names.push_back(name.scalar);
  std::ranges::sort(in_list);
  std::ranges::sort(in_names);
  EXPECT_EQ(in_list, in_names) << "a row is found by its name";
  EXPECT_EQ(json["runs"][0]["lists"][2]["by"].scalar, "line");
}

}  // namespace
}  // namespace kiv::report
