#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "same_tables.h"
#include "support/run_trace.h"
#include "support/stories.h"
#include "tables/csv_tables.h"
#include "trace/record_cursor.h"

// Traces that are cut off, flipped or full of impossible numbers.

namespace kiv::test {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool address_space_can_be_limited = false;
#elif defined(__clang__)
constexpr bool address_space_can_be_limited = !__has_feature(address_sanitizer);
#else
constexpr bool address_space_can_be_limited = true;
#endif

// Where the records of the first data file end, little-endian, with 0 in front.
std::vector<std::size_t> record_ends(const std::string& data) {
  std::vector<std::size_t> ends{0};
  while (ends.back() < data.size()) {
    const auto byte = [&](std::size_t i) {
      return static_cast<std::size_t>(static_cast<unsigned char>(data[ends.back() + i]));
    };
    ends.push_back(ends.back() + 3 + byte(1) + 256 * byte(2));
  }
  return ends;
}

// Cuts each record behind its first byte and every `step` bytes from there.
void expect_cuts_to_lose_one_record(const story& s, std::size_t step) {
  trace unsplit, told;
  s.tell(unsplit);
  s.tell(told.split_after(unsplit.record_count() - 1));
  const run_result whole = run_trace(told);
  const std::vector<std::size_t> ends = record_ends(told.data(0));
  for (std::size_t record = 0; record + 1 < ends.size(); ++record) {
    SCOPED_TRACE(record);
    // What stands before the cut is booked: the rest may as well come from another file.
    trace moved = told;
    moved.data(1).insert(0, moved.data(0), ends[record]);
    moved.data(0).resize(ends[record]);
    expect_same_tables(whole, run_trace(moved));

    trace cut = told;
    cut.recorded_size(0, "2147483647").data(0).resize(ends[record]);
    const run_result without = run_trace(cut);
    EXPECT_EQ(without.out.find("OUT OF SYNC"), std::string::npos);
    const std::string said =
        "OUT OF SYNC!!! record: " + std::to_string(record + 1) + "Corrected...\n";
    for (std::size_t at = ends[record] + 1; at < ends[record + 1]; at += step) {
      SCOPED_TRACE(at);
      cut.data(0).assign(told.data(0), 0, at);
      run_result part = run_trace(cut);
      expect_same_tables(without, part);
      const std::size_t place = part.out.find(said);
      ASSERT_NE(place, std::string::npos) << part.out;
      EXPECT_EQ(part.out.erase(place, said.size()), without.out);
    }
  }
}

TEST(Damage, ACutFileLosesTheRecordThatWasCutAndNothingElse) {
  for (const story& s : clean_stories()) {
    SCOPED_TRACE(s.name);
    expect_cuts_to_lose_one_record(s, s.name == "every_record_type_once" ? 1 : 11);
  }
}

TEST(Damage, ANumberThatTheFileDoesNotWhollyHoldIsLeftAlone) {
  const unsigned char bytes[] = {1, 0, 0, 0, 2, 0, 9, 9, 9};  // the file has six of them
  record_cursor cursor(6, true);
  cursor.go_on_in(bytes, 0);
  const std::uint32_t widths[] = {4, 4};
  std::uint32_t whole = 7, cut = 7;
  EXPECT_FALSE(cursor.read_all(widths, whole, cut));
  for (std::uint32_t* number : {&whole, &cut}) cursor.read(4, *number);
  EXPECT_EQ(whole, 1U);
  EXPECT_EQ(cut, 7U);
  EXPECT_TRUE(cursor.at_end() && !cursor.at_record_end());
}

// What holds in the memory rows of any trace whose ids 1 to 5 are reserved before them. Sums are
// taken modulo 2^32, as far as the books agree for any sizes.
void expect_books_agree(const run_result& run) {
  const table memory = run.rows("memory"), marker = run.rows("marker");
  const table freemem = run.rows("freemem");
  for (std::size_t i = 0; i < marker.size(); ++i) {
    ASSERT_EQ(marker.number(i, "marker"), static_cast<std::int64_t>(i));
  }
  std::map<std::int64_t, std::uint32_t> live_of_id, held;
  std::int64_t rec = 0;
  std::uint32_t live = 0, no_free = 0;
  for (std::size_t i = 0; i < memory.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "memory row " << i + 1);
    const auto size = [&](const char* column) {
      return static_cast<std::uint32_t>(memory.number(i, column));
    };
    const char type = memory.text(i, "type")[0];
    const bool booked = type != 'r' || memory.number(i, "linked_rec") != 0;
    ASSERT_EQ(memory.number(i, "rec"), rec += booked ? 1 : 0);
    live = size("global_live_size");
    no_free = size("global_nf_size");
    if (!booked) continue;
    const std::int64_t id = memory.number(i, "malid");
    live_of_id[id >= 1 && id <= 5 ? id : 99999999] =
        type == 'F' || type == 'Z' ? 0 : size("malid_live_size");
    std::uint32_t sum = 0;
    for (const auto& [book, of_book] : live_of_id) sum += of_book;
    ASSERT_EQ(sum, live);
    if (type == 'a' || type == 'n' || type == 'r') held[rec] = size("size");
  }
  std::uint32_t blocks = 0;
  for (std::size_t i = 0; i < freemem.size(); ++i) held.erase(freemem.number(i, "alloc_rec"));
  for (const auto& [record, block] : held) blocks += block;
  // A block refused because its address is live counts in the books, but has no end.
  const bool refused = run.err.find("already in DB") != std::string::npos;
  EXPECT_TRUE(refused || blocks == live + no_free) << blocks << " " << live << " " << no_free;
}

TEST(Damage, FlippedBytesLeaveBooksThatAgree) {
  trace announced, told;
  random_operations(announced, 21, 0);
  random_operations(told, 21, 120);
  const std::size_t start = announced.data().size();
  const std::string data = told.data();
  // A text that was made of other bytes may hold separators: only rows without such are read.
  const auto texts = [](const run_result& run) {
    std::map<char, int> count;
    for (std::size_t at = 0; (at = run.err.find("tag: ", at)) != std::string::npos; at += 5) {
      const char tag = run.err[at + 5];
      if (tag == 'R' || tag == 'C' || tag == 'i') ++count[tag];
    }
    return count;
  };
  const auto clean = texts(run_trace(told, {"-D"}));

  std::mt19937 engine(4);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(engine() % n); };
  int compared = 0;
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    told.data() = data;
    for (std::size_t flips = 1 + below(4); flips > 0; --flips) {
      char& byte = told.data()[start + below(data.size() - start)];
      byte = static_cast<char>(byte ^ static_cast<int>(1 + below(255)));
    }
    const run_result plain = run_trace(told), listed = run_trace(told, {"-D"});
    EXPECT_EQ(plain.status, 0);
    EXPECT_EQ(plain.files.size(), csv_tables().size() + 1);
    expect_same_tables(plain, listed);
    const auto found = texts(listed);
    if (found.contains('i') || (found.contains('C') && found.at('C') > clean.at('C'))) continue;
    if (found.at('R') != clean.at('R')) continue;
    expect_books_agree(plain);
    ++compared;
  }
  EXPECT_GT(compared, 150);
}

// Runs the program over the trace with so much address space, in KiB.
run_result run_within(int address_space, const temp_dir& dir, const trace& t) {
  const std::string limit = "ulimit -v " + std::to_string(address_space);
  return run_kiv(dir.path(), {"-c", limit + "; exec " KIV_PROGRAM " -H " + t.header_name()},
                 "/bin/sh");
}

constexpr int small_address_space = 64 * 1024;

TEST(Damage, NumbersInATraceAllocateNothing) {
  if (!address_space_can_be_limited) GTEST_SKIP() << "the sanitizer needs all of it";
  const std::vector<void (*)(trace&)> stories = {
      [](trace& t) {
        constexpr std::uint32_t most = 1'048'576;
        t.reserve(1, "oic:x", most).color(most - 1, "last").malloc_wf(1, most - 1, 16, 8, 8);
        t.free_id(1, 8);
      },
      [](trace& t) {
        for (const std::uint32_t n : {0x7fffffffU, 0x80000000U, 0xffffffffU}) {
          const auto number = static_cast<std::int32_t>(n);
          t.proc(n, "p").schedule(0, n).reserve(n, "proc:4294967295:x", n).color(n - 1, "c");
          t.object(n).function(n, number, "f").global(n, number, "g").special(n, number, "s");
          t.link(n, n).flow_in(n, number, n, number).hosk_in(n, n, number, number, "");
          t.malloc_wf(n, n, number, n, n, number, number).malloc_nf(n, n, number, n, n);
          t.realloc(n, n, number, n - 1, n).free(n, n, number).reset_id(n, n, n).free_id(n, n, n);
          t.symbol(number, number, number).symbol_dims(number, n, {n, n, n, n}).sbrk(number, n);
          t.symbol_alloc(number, n, n, "").query_in(n, 'p', "q").query_out(n, n).time(n, n);
          t.mallinfo(n, n, n).gap(number, -number).proc_end(n);
        }
      },
      // Records whose texts have no end.
      [](trace& t) { t.raw(std::string(4'000'000, 'l')); },
      [](trace& t) { t.raw(std::string(4'000'000, 'B')); },
  };
  for (std::size_t i = 0; i < stories.size(); ++i) {
    for (const char* recorded : {"2147483647", "99999999999999999999", "-1"}) {
      SCOPED_TRACE(testing::Message() << i << " " << recorded);
      trace t;
      stories[i](t);
      t.recorded_size(0, recorded);
      for (const char tag : all_tags()) t.extra_field(tag, 2'147'483'647);
      const temp_dir dir;
      ASSERT_TRUE(t.write(dir.path(), "."));
      const run_result run = run_within(small_address_space, dir, t);
      EXPECT_EQ(run.status, 0) << run.err;
      EXPECT_EQ(run.files.size(), csv_tables().size() + 1);
    }
  }
}

TEST(Damage, ExhaustedMemoryKeepsWhatWasWritten) {
  if (!address_space_can_be_limited) GTEST_SKIP() << "the sanitizer needs all of it";
  trace t;
  t.marker("before").next_file();
  for (int i = 0; i < 20'000; ++i) t.function(1, i, "function");
  const temp_dir dir;
  ASSERT_TRUE(t.write(dir.path(), "."));
  // Every time that the file is read, its functions are announced again.
  std::string header = t.header(".");
  const std::size_t first = header.find(" <kivfile>", header.find("000.kivdat"));
  const std::string listed = header.substr(first, header.find("</kivfile>\n", first) + 11 - first);
  for (int i = 0; i < 100; ++i) header.insert(first, listed);
  ASSERT_TRUE(write_file(dir / t.header_name(), header));

  const run_result run = run_within(small_address_space, dir, t);
  EXPECT_EQ(run.status, 128 + SIGABRT);
  EXPECT_TRUE(
      run.err.ends_with("\nSome error occurred: debug and break at kiv_terminate_handler\n"))
      << run.err;
  EXPECT_TRUE(run.bytes("marker").ends_with(";before\n"));
  EXPECT_TRUE(run.out.ends_with(".flow.1.csv 1\n")) << run.out;
}

}  // namespace
}  // namespace kiv::test
