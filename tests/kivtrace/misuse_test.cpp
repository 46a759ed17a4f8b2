#include <sys/stat.h>

#include <filesystem>
#include <functional>

#include "kivtrace/written_run.h"

namespace kiv::test {
namespace {

TEST(Opening, BadOptionsAreNamedAndNothingIsMade) {
  const struct {
    std::function<void(kiv_trace_options&)> change;
    const char* message;
  } cases[] = {
      {[](auto& o) { o.size = 8; },
       "options that kiv_trace_options_init() of this version did not set"},
      {[](auto& o) { o.run_id = nullptr; }, "a trace needs a run id"},
      {[](auto& o) { o.run_id = ""; }, "a trace needs a run id"},
      {[](auto& o) { o.directory = nullptr; }, "a trace needs a directory"},
      {[](auto& o) { o.directory = ""; }, "a trace needs a directory"},
      {[](auto& o) { o.base_name = "../x"; }, "a base name with a slash"},
      {[](auto& o) { o.pid = -1; }, "a pid below 0"},
      {[](auto& o) { o.byte_order = 3; }, "a byte order that is none of kiv_trace_byte_order"},
      {[](auto& o) { o.address_width = 2; }, "an address width that is not 4 or 8"},
      {[](auto& o) { o.max_file_size = 64; },
       "a data file's size that is not from 1024 to 2147483647"},
      {[](auto& o) { o.max_file_size = std::uint64_t{1} << 31; },
       "a data file's size that is not from 1024 to 2147483647"},
      {[](auto& o) { o.buffer_size = std::uint64_t{1} << 40; },
       "a buffer of more than 2147483647 bytes"},
      {[](auto& o) { o.directory = "/dev/null/x"; }, "/dev/null/x: Not a directory"},
  };
  const written_run run;
  for (const auto& [change, message] : cases) {
    kiv_trace_options options = run.options;
    change(options);
    EXPECT_EQ(kiv_trace_open(&options), nullptr);
    EXPECT_STREQ(kiv_trace_error(), message);
  }
  EXPECT_EQ(kiv_trace_open(nullptr), nullptr);
  EXPECT_FALSE(std::filesystem::exists(run.directory()));
}

TEST(Opening, ATraceThatIsThereIsReplacedOnDemandOnly) {
  written_run run;
  kiv_trace* trace = run.open();
  kiv_trace_marker(trace, "first");
  ASSERT_EQ(kiv_trace_close(trace), 0);
  EXPECT_EQ(kiv_trace_open(&run.options), nullptr);
  EXPECT_EQ(kiv_trace_error(), run.header_path() + ": File exists");
  EXPECT_EQ(markers(run.analysed()), std::vector<std::string>{"first"});

  run.options.replace = 1;
  trace = run.open();
  kiv_trace_marker(trace, "second");
  ASSERT_EQ(kiv_trace_close(trace), 0);
  EXPECT_EQ(markers(run.analysed()), std::vector<std::string>{"second"});
}

TEST(Opening, WhatFailsHalfWayLeavesNothing) {
  const written_run run;
  std::filesystem::create_directories(run.directory() + "/kiv.7.000.kivdat/in the way");
  EXPECT_EQ(kiv_trace_open(&run.options), nullptr);
  EXPECT_EQ(kiv_trace_error(), run.directory() + "/kiv.7.000.kivdat: Is a directory");
  EXPECT_FALSE(std::filesystem::exists(run.header_path()));
}

TEST(Misuse, IsRefusedWithAReason) {
  EXPECT_EQ(kiv_trace_marker(nullptr, "x"), -1);
  EXPECT_STREQ(kiv_trace_error(), "no trace is given");
  EXPECT_EQ(kiv_trace_close(nullptr), -1);
  EXPECT_STREQ(kiv_trace_header_path(nullptr), "");
  const written_run run;
  kiv_trace* trace = run.open();
  EXPECT_EQ(kiv_trace_unlock(trace), -1);
  EXPECT_STREQ(kiv_trace_error(), "not locked by this thread");
  EXPECT_EQ(kiv_trace_close(trace), 0);
}

TEST(Closing, AnAbandonedTraceIsWholeButOpen) {
  const written_run run;
  kiv_trace* trace = run.open();
  kiv_trace_marker(trace, "written");
  EXPECT_EQ(kiv_trace_abandon(trace), 0);
  EXPECT_FALSE(read_back(run.header_path()).header.closed());
  EXPECT_EQ(markers(run.analysed()), std::vector<std::string>{"written"});
}

TEST(Closing, StandardStreamsThatWereClosedDoNotEndUpInTheTrace) {
  const written_run run;
  ASSERT_TRUE(holds_in_child([&] {
    for (const int stream : {0, 1, 2}) ::close(stream);
    kiv_trace* trace = kiv_trace_open(&run.options);
    const ssize_t written = write(1, "print", 5) + write(2, "print", 5);
    kiv_trace_marker(trace, "alone");
    return written == -2 && kiv_trace_close(trace) == 0;
  }));
  EXPECT_EQ(run.data(), std::vector<std::string>{std::string("C\6\0alone\0", 9)});
}

}  // namespace
}  // namespace kiv::test
