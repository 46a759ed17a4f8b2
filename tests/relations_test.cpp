#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "same_tables.h"
#include "support/run_trace.h"
#include "support/stories.h"
#include "tables/csv_tables.h"

// What must hold between two runs, or between the rows of one, whatever the trace says.

namespace kiv::test {
namespace {

const std::vector<story> clean = [] {
  std::vector<story> all = clean_stories();
  all.push_back({"random 1", [](trace& t) { random_operations(t, 1); }});
  all.push_back({"random 2", [](trace& t) { random_operations(t, 2); }});
  all.push_back({"random 3", [](trace& t) { random_operations(t, 3, 3500); }});
  return all;
}();
const std::vector<story> clean_and_damaged = [] {
  std::vector<story> all = clean;
  all.insert(all.end(), damaged_stories().begin(), damaged_stories().end());
  return all;
}();

trace told(const story& s, trace t = {}) {
  s.tell(t);
  return t;
}

void expect_same_results(const run_result& expected, const run_result& actual) {
  expect_same_tables(expected, actual);
  EXPECT_EQ(first_difference(expected.out, actual.out), "");
}

TEST(Relations, TheWayATraceIsWrittenChangesNoTable) {
  for (const story& s : clean) {
    SCOPED_TRACE(s.name);
    const run_result plain = run_trace(told(s));
    for (const bool big : {false, true}) {
      for (const int width : {4, 8}) {
        for (const std::size_t files : {1U, 5U}) {
          trace t;
          if (big) t.big_endian();
          t.addr_width(width);
          if (files > 1) t.split_after(told(s).record_count() / files);
          SCOPED_TRACE(testing::Message() << big << " " << width << " " << files);
          expect_same_results(plain, run_trace(told(s, t)));
        }
      }
    }
  }
}

TEST(Relations, SeparatorsAndDebugLevelsChangeNothingElse) {
  for (const story& s : clean_and_damaged) {
    SCOPED_TRACE(s.name);
    const run_result plain = run_trace(told(s));
    run_result other = run_trace(told(s), {"-sd", "\1", "-sf", "\2"});
    for (const csv_table& one : csv_tables()) other.rows(one.name);
    for (auto& [name, bytes] : other.files) {
      std::replace_if(
          bytes.begin(), bytes.end(), [](char c) { return c == 1 || c == 2; }, ';');
    }
    expect_same_results(plain, other);
    for (const char* level : {"-d", "-D"}) {
      run_result listed = run_trace(told(s), {level});
      listed.out.erase(0, listed.out.find("csv_file:"));  // the header's field list stands before
      expect_same_results(plain, listed);
    }
  }
}

TEST(Relations, SplitFilesJoinedAreTheUnsplitFile) {
  for (const story& s : clean_and_damaged) {
    SCOPED_TRACE(s.name);
    const run_result whole = run_trace(told(s));
    for (const int limit : {-2045, 1, 1000, 20'000}) {
      const run_result split = run_trace(told(s), {"-M", std::to_string(limit + 2048)});
      for (const csv_table& one : csv_tables()) {
        SCOPED_TRACE(testing::Message() << one.name << " " << limit);
        EXPECT_EQ(first_difference(whole.bytes(one.name), split.bytes(one.name)), "");
        const auto parts = split.parts(one.name);
        EXPECT_TRUE(one.split_by_size || parts.size() == 1);
        // A part ends with the row that reaches the limit; below zero every row has its own part.
        for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
          const std::size_t before = parts[i].substr(0, parts[i].size() - 1).rfind('\n') + 1;
          EXPECT_TRUE(parts[i].ends_with('\n') || (i == 0 && limit < 0));
          EXPECT_GE(static_cast<int>(parts[i].size()), limit);
          EXPECT_LT(static_cast<int>(before), std::max(limit, 1));
        }
      }
    }
  }
}

TEST(Relations, UnknownHeaderElementsChangeNothing) {
  trace t;
  every_record_type_once(t);
  const temp_dir dir;
  ASSERT_TRUE(t.write(dir.path(), "."));
  const run_result plain = run_kiv(dir.path(), {"-H", t.header_name()});
  std::string header = t.header(".");
  for (std::size_t at = header.find("<kiv>"); (at = header.find('\n', at)) + 1 < header.size();) {
    const std::string unknown = "<later value=\"9\" size=\"9\">text<pids value=\"9\"/></later>";
    header.insert(at, unknown);
    at += unknown.size() + 1;
  }
  ASSERT_TRUE(write_file(dir / t.header_name(), header));
  expect_same_results(plain, run_kiv(dir.path(), {"-H", t.header_name()}));
}

void check_markers(const table& marker) {
  for (std::size_t i = 0; i < marker.size(); ++i) {
    EXPECT_EQ(marker.number(i, "marker"), static_cast<std::int64_t>(i));
    EXPECT_EQ(marker.number(i, "last_rec"), i == 0 ? 0 : marker.number(i - 1, "rec"));
  }
}

void expect_counters_to_run_on(trace first) {
  trace second;
  random_operations(second, 5, 200);
  first.runid("R42").pid(7);
  second.runid("R42").pid(8);
  const temp_dir dir;
  for (const trace* t : {&first, &second}) ASSERT_TRUE(t->write(dir.path(), "."));
  const run_result both =
      run_in_order(dir.path(), {first.header_name(), second.header_name()}, 1 << 30);
  const run_result alone[] = {run_trace(first, {"-T", "in order"}),
                              run_trace(second, {"-T", "in order"})};
  EXPECT_EQ(first_difference(alone[0].files.at("kiv.R42.sql"), both.files.at("kiv.R42.sql")), "");

  const auto rows_of = [&](const char* name) {
    return static_cast<std::int64_t>(alone[0].rows(name).size());
  };
  const std::int64_t records = alone[0].rows("process").number(0, "end_record");
  const std::map<std::string_view, std::int64_t> shifts = {
      {"marker", rows_of("marker")},     {"sbrk_row", rows_of("sbrk")},
      {"arena_row", rows_of("arena")},   {"record", records},
      {"record_again", records},         {"start_record", records},
      {"end_record", records},           {"start_sbrk_rows", rows_of("sbrk")},
      {"end_sbrk_rows", rows_of("sbrk")}};
  for (const csv_table& one : csv_tables()) {
    EXPECT_TRUE(both.bytes(one.name).starts_with(alone[0].bytes(one.name))) << one.name;
    const table after = both.rows(one.name), solo = alone[1].rows(one.name);
    const std::size_t before = alone[0].rows(one.name).size();
    ASSERT_EQ(after.size(), before + solo.size()) << one.name;
    for (std::size_t i = 0; i < solo.size(); ++i) {
      for (const csv_column& column : one.columns) {
        if (column.name == "last_rec") continue;
        const auto shift = shifts.find(column.name);
        // The default process starts with no trace at all; 0 and 0 say that nothing was counted.
        const bool stays =
            (one.name == "process" && i == 0 && column.name == "start_record") ||
            (column.name.ends_with("_sbrk_rows") && solo.number(i, "end_sbrk_rows") == 0);
        if (shift == shifts.end() || stays) {
          EXPECT_EQ(after.text(before + i, column.name), solo.text(i, column.name)) << one.name;
        } else {
          EXPECT_EQ(after.number(before + i, column.name),
                    solo.number(i, column.name) + shift->second)
              << one.name << "." << column.name;
        }
      }
    }
  }
  check_markers(both.rows("marker"));
}

TEST(Relations, CountersRunOnFromTraceToTrace) {
  for (const story& s : clean_stories()) {
    SCOPED_TRACE(s.name);
    expect_counters_to_run_on(told(s));
  }
}

// Checks every row of every table against the catalogue and the books against each other.
void check_rows(const run_result& run) {
  for (const csv_table& one : csv_tables()) run.rows(one.name);
  const table memory = run.rows("memory");
  const table marker = run.rows("marker");
  check_markers(marker);
  std::size_t thousands = 0;
  for (std::size_t i = 0; i < marker.size(); ++i) {
    if (marker.text(i, "subtype") != "recs") continue;
    EXPECT_EQ(marker.text(i, "marker_text"), "Record nr " + std::to_string(1000 * ++thousands));
  }
  EXPECT_EQ(thousands, memory.size() / 1000);

  const table flow = run.rows("flow");
  std::map<std::int64_t, std::int64_t> flows;
  for (std::size_t i = 0; i < flow.size(); ++i) {
    const std::int64_t number = flow.number(i, "flow");
    std::int64_t& last = flows[flow.number(i, "pid")];
    EXPECT_TRUE(number == 0 || number == last + 1) << "flow row " << i + 1;
    last = number;
  }

  const table malid = run.rows("malid");
  std::set<std::int64_t> reserved;
  for (std::size_t i = 0; i < malid.size(); ++i) reserved.insert(malid.number(i, "malid"));
  const auto book_of = [&](std::size_t row) {
    const std::int64_t id = memory.number(row, "malid");
    return reserved.contains(id) ? id : 99999999;
  };
  const auto sum = [](const auto& by_key) {
    std::int64_t all = 0;
    for (const auto& [key, value] : by_key) all += value;
    return all;
  };

  for (const std::string size : {"size", "tot_size"}) {
    std::map<std::int64_t, std::int64_t> by_id, by_process, held;
    std::int64_t rec = 0, change = 0, peak = 0;
    for (std::size_t i = 0; i < memory.size(); ++i) {
      SCOPED_TRACE(testing::Message() << size << " in memory row " << i + 1);
      const char type = memory.text(i, "type")[0];
      const std::int64_t linked = memory.number(i, "linked_rec");
      const bool booked = type != 'r' || linked != 0;
      EXPECT_EQ(memory.number(i, "rec"), rec += booked ? 1 : 0);
      EXPECT_EQ(memory.number(i, "rec_thousands"), rec / 1000);

      const std::int64_t live = memory.number(i, "global_live_" + size);
      const bool cleared = type == 'F' || type == 'Z';
      by_id[book_of(i)] = cleared ? 0 : memory.number(i, "malid_live_" + size);
      by_process[memory.number(i, "pid")] = memory.number(i, "process_live_" + size);
      EXPECT_EQ(sum(by_id), live);
      EXPECT_EQ(sum(by_process), live);
      EXPECT_EQ(change += memory.number(i, size + "_change"),
                live + memory.number(i, "global_nf_" + size));
      EXPECT_EQ(peak = std::max(peak, live), memory.number(i, "global_peak_" + size));
      if (booked && (type == 'a' || type == 'n' || type == 'r')) held[rec] = memory.number(i, size);
    }

    // Every block ends at most once, by the record that says so; what is left is live.
    const table freemem = run.rows("freemem");
    for (std::size_t i = 0; i < freemem.size(); ++i) {
      EXPECT_EQ(held.erase(freemem.number(i, "alloc_rec")), 1U) << "freemem row " << i + 1;
    }
    EXPECT_EQ(sum(held), change);
  }
}

TEST(Relations, BooksAgreeWithEachOtherInEveryRow) {
  for (const story& s : clean) {
    SCOPED_TRACE(s.name);
    check_rows(run_trace(told(s)));
  }
  const temp_dir dir;
  std::filesystem::copy(KIV_SOURCE_DIR "/samples/MIX", dir / "MIX");
  check_rows(run_kiv(dir.path(), {"-R", "MIX"}));
}

// What a row keeps of its context for the next one must be all of it, wherever its buffer ended.
TEST(Relations, RowsInOneContextShowItWholeHoweverLongItIs) {
  trace t;
  t.reserve(1, "pool").object(3).global(3, 0, "on_open").proc(7, "server").link(7, 3);
  t.schedule(0, 7);
  constexpr std::size_t shortest = 1'900, longest = 2'150;
  for (std::size_t length = shortest; length <= longest; ++length) {
    t.hosk_in(3, 0, 0, 9, std::string(length, 'h'));
    for (std::uint32_t i = 0; i < 2; ++i) t.malloc_nf(1, 0, 16, 8, 16);
  }
  const table memory = run_trace(t).rows("memory");
  ASSERT_EQ(memory.size(), 2 * (longest - shortest + 1));
  for (std::size_t row = 0; row < memory.size(); ++row) {
    EXPECT_EQ(memory.number(row, "pid"), 7);
    EXPECT_EQ(memory.text(row, "hosk_call"), "on_open");
    EXPECT_EQ(memory.text(row, "hosk_args").size(), shortest + row / 2);
  }
}

// A trace may reserve the number of the id that serves unknown numbers: two ids, one number.
TEST(Relations, ResetOfAnUnknownIdShowsItsOwnBookWhenItsNumberIsReserved) {
  trace t;
  t.reserve(99999999, "mine").malloc_nf(99999999, 0, 16, 100, 112);
  t.malloc_nf(8, 0, 32, 30, 32).reset_id(8, 0, 32);
  const table memory = run_trace(t).rows("memory");
  ASSERT_EQ(memory.size(), 3);
  EXPECT_EQ(memory.number(2, "malid"), 99999999);
  EXPECT_EQ(memory.number(2, "tot_size_change"), -32);
  EXPECT_EQ(memory.number(2, "malid_mem_tot_size"), 32);
}

}  // namespace
}  // namespace kiv::test
