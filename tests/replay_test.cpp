#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "replay/observer.h"
#include "same_tables.h"
#include "support/replay_in_memory.h"
#include "support/run_trace.h"
#include "support/stories.h"

// The replay without its tables, and runs that must not feel each other.

namespace kiv::test {
namespace {

// Counts what happens to blocks.
class counting_observer : public replay_observer {
 public:
  struct sum {
    std::int64_t blocks = 0, bytes = 0;
    friend bool operator==(const sum&, const sum&) = default;
  };

  void block_made(block_handle block, const memory_change& change) override {
    EXPECT_TRUE(sizes_.try_emplace(block, static_cast<std::int64_t>(change.size)).second);
    count(made[static_cast<char>(change.type)], change.size);
  }
  void block_refused(const memory_change& change) override {
    count(made[static_cast<char>(change.type)], change.size);
  }
  void block_resized(block_handle block, const memory_change& resized) override {
    sizes_.at(block) += resized.size_change;
    EXPECT_EQ(sizes_.at(block), static_cast<std::int64_t>(resized.size));
  }
  void block_ended(block_handle block, const live_block& gone, std::uint64_t /*cause*/,
                   kiv_type by) override {
    EXPECT_EQ(sizes_.at(block), gone.size);
    sizes_.erase(block);
    count(ended[static_cast<char>(by)], gone.size);
  }
  void memory_changed(const memory_change& change) override {
    ++records[static_cast<char>(change.type)];
  }
  void trace_ended() override { ended_well = true; }

  std::map<char, sum> made, ended;  // by the record's tag
  std::map<char, std::int64_t> records;
  bool ended_well = false;

 private:
  static void count(sum& of, std::uint64_t size) {
    ++of.blocks;
    of.bytes += static_cast<std::int64_t>(size);
  }
  std::map<block_handle, std::int64_t> sizes_;
};

// The same by the rows.
struct counted_rows {
  explicit counted_rows(const run_result& run) {
    const table memory = run.rows("memory"), freemem = run.rows("freemem");
    std::map<std::int64_t, std::int64_t> size_of;  // by record
    for (std::size_t i = 0; i < memory.size(); ++i) {
      const char type = memory.text(i, "type")[0];
      ++records[type];
      if (type != 'a' && type != 'n' && type != 'r') continue;
      if (type == 'r' && memory.number(i, "linked_rec") == 0) continue;  // found no block
      size_of[memory.number(i, "rec")] = memory.number(i, "size");
      if (type != 'r') add(made[type], memory.number(i, "size"));
    }
    for (std::size_t i = 0; i < freemem.size(); ++i) {
      const char type = freemem.text(i, "type")[0];
      if (type != 'r') add(ended[type], size_of.at(freemem.number(i, "alloc_rec")));
    }
    const std::string markers = run.bytes("marker");
    ended_well = markers.find("End of measurement") != std::string::npos;
  }
  static void add(counting_observer::sum& of, std::int64_t size) {
    ++of.blocks;
    of.bytes += size;
  }
  std::map<char, counting_observer::sum> made, ended;
  std::map<char, std::int64_t> records;
  bool ended_well = false;
};

TEST(Replay, AnotherObserverSeesWhatTheTablesSay) {
  std::vector<story> stories = clean_stories();
  stories.insert(stories.end(), damaged_stories().begin(), damaged_stories().end());
  for (unsigned seed = 1; seed <= 5; ++seed) {
    stories.push_back({"random", [=](trace& t) { random_operations(t, seed, 1500); }});
  }
  for (const story& one : stories) {
    SCOPED_TRACE(one.name);
    trace t;
    one.tell(t);
    counting_observer observer;
    diagnostics silent;
    replay_in_memory(t, silent).reader().ReadEvents(observer);
    const counted_rows rows(run_trace(t));
    EXPECT_EQ(observer.made, rows.made);
    EXPECT_EQ(observer.ended, rows.ended);
    EXPECT_EQ(observer.records, rows.records);
    EXPECT_EQ(observer.ended_well, rows.ended_well);
  }
}

TEST(Replay, TwoRunsInOneProcessAreLikeTwoProcesses) {
  trace first, second;
  nothing_announced(first);
  every_record_type_once(second.big_endian());
  const std::vector<std::string> options = {"-D", "-sd", ",", "-sf", "@", "-M", "4K"};
  const auto args = [&](const trace& t, std::vector<std::string> all) {
    all.insert(all.end(), {"-H", t.header_name()});
    return all;
  };
  const temp_dir together, apart;
  for (const temp_dir* dir : {&together, &apart}) {
    ASSERT_TRUE(first.write(dir->path() + "/1", ".") && second.write(dir->path() + "/2", "."));
  }
  for (const auto& [t, dir, given] :
       {std::tuple(&first, "/1", options), std::tuple(&second, "/2", std::vector<std::string>{})}) {
    SCOPED_TRACE(dir);
    const run_result called = run_kiv(together.path() + dir, args(*t, given));
    const run_result started = run_kiv(apart.path() + dir, args(*t, given), KIV_PROGRAM);
    expect_same_tables(started, called);
    EXPECT_EQ(first_difference(started.out, called.out), "");
    EXPECT_EQ(first_difference(started.err, called.err), "");
    EXPECT_EQ(started.status, called.status);
  }
}

}  // namespace
}  // namespace kiv::test
