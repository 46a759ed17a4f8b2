#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>

#include "kivtrace/trace_lock.h"
#include "kivtrace/written_run.h"
#include "report/json_reader.h"

// Processes that die, fork, fill the disk or use the interface from many threads.
namespace kiv::test {
namespace {

std::vector<std::string> numbers(std::size_t count) {
  std::vector<std::string> all;
  for (std::size_t i = 0; i < count; ++i) all.push_back(std::to_string(i));
  return all;
}

TEST(DeadWriter, WhatWasFlushedIsReadAndTheTraceIsOpen) {
  written_run run;
  run.options.program = "orderd";
  run.options.host = "mill";
  ASSERT_TRUE(holds_in_child([&] {
    kiv_trace* trace = kiv_trace_open(&run.options);
    for (const std::string& number : numbers(100)) kiv_trace_marker(trace, number.c_str());
    const bool flushed = kiv_trace_flush(trace) == 0;
    kiv_trace_marker(trace, "lost");
    return flushed;
  }));
  const read_back back(run.header_path());
  EXPECT_EQ(back.result, 0);
  EXPECT_FALSE(back.header.closed());
  EXPECT_EQ(back.header.progname() + back.header.hostname(), "orderdmill");
  EXPECT_EQ(back.header.start().secs, 1'700'000'000);
  const run_result result = run.analysed();
  EXPECT_EQ(markers(result), numbers(100));
  EXPECT_EQ(result.out.find("OUT OF SYNC"), std::string::npos);
  EXPECT_EQ(complaints(result), "");
}

#ifdef KIVDB_PROGRAM
TEST(DeadWriter, ReportTellsHowFarItWentAndThatItIsOpen) {
  const written_run run;
  ASSERT_TRUE(holds_in_child([&] {
    kiv_trace* trace = kiv_trace_open(&run.options);
    kiv_trace_timestamp(trace, 1'700'000'600, 0);
    return kiv_trace_flush(trace) == 0;
  }));
  ASSERT_EQ(std::system(("TZ=UTC '" KIVDB_PROGRAM "' report '" + run.directory() + "' --json >'" +
                         run.directory() + "/report'")
                            .c_str()),
            0);
  const json_value report = read_json(read_file(run.directory() + "/report"));
  const json_value& trace = report["runs"][0]["traces"][0];
  EXPECT_EQ(trace["start"].scalar, "2023-11-14 22:13:20.000");
  EXPECT_EQ(trace["end"].scalar, "2023-11-14 22:23:20.000");
  EXPECT_EQ(trace["complete"].scalar, "false");
  ASSERT_EQ(trace["losses"].size(), 1U);
  EXPECT_EQ(trace["losses"][0]["what"].scalar, "header not closed");
}
#endif

// What a child tells its parent, in memory that both see.
using shared_count = std::atomic<std::uint32_t>;

TEST(DeadWriter, KilledAtAnyMomentItLeavesAllThatWasFlushed) {
  void* shared = mmap(nullptr, sizeof(shared_count), PROT_READ | PROT_WRITE,
                      MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(shared, MAP_FAILED);
  auto* flushed = new (shared) shared_count;
  std::minstd_rand random(1);
  for (int round = 0; round < 20; ++round) {
    written_run run;
    run.options.max_file_size = 1024;
    run.options.buffer_size = 100;
    flushed->store(0);
    const pid_t child = fork();
    if (child == 0) {
      kiv_trace* trace = kiv_trace_open(&run.options);
      for (std::uint32_t i = 0; trace != nullptr; ++i) {
        kiv_trace_marker(trace, std::to_string(i).c_str());
        if (i % 16 == 15 && kiv_trace_flush(trace) == 0) flushed->store(i + 1);
      }
      _exit(1);
    }
    const std::uint32_t enough = static_cast<std::uint32_t>(random() % 3000) + 1;
    while (flushed->load() < enough && waitpid(child, nullptr, WNOHANG) == 0) usleep(100);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);

    EXPECT_EQ(read_back(run.header_path()).result, 0);
    const auto read = markers(run.analysed());
    EXPECT_EQ(read, numbers(read.size()));
    EXPECT_GE(read.size(), std::max(flushed->load(), enough));
  }
  munmap(shared, sizeof(shared_count));
}

TEST(FullDisk, IsToldOnceAndForAllAndLeavesAnOpenTrace) {
  written_run run;
  run.options.max_file_size = 30'000;
  run.options.buffer_size = 1000;
  ASSERT_TRUE(holds_in_child([&] {
    signal(SIGXFSZ, SIG_IGN);
    kiv_trace* trace = kiv_trace_open(&run.options);
    for (int i = 0; i < 5000; ++i) {
      if (kiv_trace_marker(trace, "fits") != 0) return false;
    }
    const rlimit limit{15'000, 15'000};  // from now on for every file
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return false;
    int taken = 0;
    while (kiv_trace_marker(trace, "more") == 0 && taken < 10'000) ++taken;
    const std::string first = kiv_trace_error();
    const bool told = first.find("kivdat: File too large") != std::string::npos;
    const bool stays = kiv_trace_marker(trace, "again") == -1 && kiv_trace_flush(trace) == -1 &&
                       first == kiv_trace_error();
    return told && stays && kiv_trace_close(trace) == -1 && first == kiv_trace_error();
  }));
  EXPECT_FALSE(read_back(run.header_path()).header.closed());
  const auto read = markers(run.analysed());
  ASSERT_GT(read.size(), 5000U);
  EXPECT_EQ(std::count(read.begin(), read.end(), "fits"), 5000);
}

TEST(Fork, TheChildHasNoPartInItsParentsTraceAndOpensItsOwn) {
  written_run run;
  kiv_trace* trace = run.open();
  kiv_trace_marker(trace, "before");
  EXPECT_TRUE(holds_in_child([&] {
    const bool refused = kiv_trace_marker(trace, "child") == -1 && kiv_trace_flush(trace) == -1 &&
                         kiv_trace_lock(trace) == -1 && kiv_trace_close(trace) == -1;
    run.options.pid = 8;
    kiv_trace* own = kiv_trace_open(&run.options);
    return refused && kiv_trace_marker(own, "child's own") == 0 && kiv_trace_close(own) == 0;
  }));
  EXPECT_EQ(kiv_trace_marker(trace, "after"), 0);
  ASSERT_EQ(kiv_trace_close(trace), 0);
  EXPECT_EQ(markers(run.analysed()), (std::vector<std::string>{"before", "after", "child's own"}));
}

TEST(Threads, RecordsOfAllStandInTheOrderOfTheirCallsAndGroupsStayTogether) {
  written_run run;
  run.options.max_file_size = 4096;
  run.options.buffer_size = 500;
  kiv_trace* trace = run.open();
  constexpr int threads = 4, groups = 2000;
  std::vector<std::thread> all;
  for (int t = 0; t < threads; ++t) {
    all.emplace_back([trace, t] {
      for (int i = 0; i < groups; ++i) {
        const std::string group = std::to_string(t) + " " + std::to_string(i);
        kiv_trace_lock(trace);
        kiv_trace_marker(trace, group.c_str());
        kiv_trace_marker(trace, group.c_str());
        kiv_trace_unlock(trace);
      }
    });
  }
  for (std::thread& thread : all) thread.join();
  ASSERT_EQ(kiv_trace_close(trace), 0);

  const auto read = markers(run.analysed());
  ASSERT_EQ(read.size(), std::size_t{2} * threads * groups);
  std::array<int, threads> next{};
  for (std::size_t i = 0; i < read.size(); i += 2) {
    ASSERT_EQ(read[i], read[i + 1]);
    int& number = next.at(static_cast<std::size_t>(read[i][0] - '0'));
    ASSERT_EQ(read[i].substr(2), std::to_string(number++));
  }
}

void* write_until_cancelled(void* trace) {
  for (;;) {
    kiv_trace_marker(static_cast<kiv_trace*>(trace), "written");
    pthread_testcancel();
  }
  return nullptr;
}

TEST(Threads, OneThatIsCancelledLeavesTheTraceToTheOthers) {
  for (int round = 0; round < 20; ++round) {
    written_run run;
    run.options.max_file_size = 1024;
    run.options.buffer_size = 1;
    kiv_trace* trace = run.open();
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, write_until_cancelled, trace), 0);
    usleep(1000);
    pthread_cancel(thread);
    pthread_join(thread, nullptr);
    EXPECT_EQ(kiv_trace_marker(trace, "last"), 0) << kiv_trace_error();
    ASSERT_EQ(kiv_trace_close(trace), 0);
    const run_result result = run.analysed();
    EXPECT_EQ(result.out.find("OUT OF SYNC"), std::string::npos);
    EXPECT_EQ(markers(result).back(), "last");
  }
}

TEST(Threads, LocksNestAndCallsDoNot) {
  trace_lock lock;
  ASSERT_TRUE(lock.lock());
  {
    const trace_lock::call outer(lock);
    EXPECT_TRUE(outer.begun());
    EXPECT_FALSE(trace_lock::call(lock).begun());
  }
  EXPECT_TRUE(trace_lock::call(lock).begun());
  EXPECT_TRUE(lock.unlock());
  EXPECT_FALSE(lock.unlock()) << "nothing is held any more";
}

}  // namespace
}  // namespace kiv::test
