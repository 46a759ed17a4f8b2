#include <gtest/gtest.h>

#include <sstream>

#include "export/pprof_tables.h"
#include "export/run_export.h"
#include "report/json_reader.h"
#include "report/made_profile.h"

// That the sums are those of the report is check_exports.py's to show.
namespace kiv::exports {
namespace {

using report::measure;
using test::made_profile;
using test::run_of;

std::string written(const run_profile& run, const export_options& options) {
  run_export what;
  std::string error;
  EXPECT_TRUE(make_export(run, options, what, error)) << error;
  std::ostringstream out;
  write_export(out, what);
  EXPECT_TRUE(out.good());
  return out.str();
}

std::string collapsed(const run_profile& run, export_options options = {}) {
  options.of = {measure::leaked};
  return written(run, options);
}

TEST(Collapsed, OneLineForEachPathOfAllTracesInTheOrderOfFrames) {
  made_profile first("R", 1), second("R", 2);
  first.leak({.path = {"app:main", "b:work"}, .id = "oic b"}, 1, 10)
      .leak({.line = "other.c:2", .path = {"app:main", "b:work"}, .color = "large"}, 2, 5)
      .leak({.path = {"app:main"}}, 3, 7)
      .leak({.path = {}}, 1, 1)
      .add({.path = {"app:freed"}}, {{figure::made, {1, 1, 1}}, {figure::freed, {1, 1, 1}}});
  second.leak({.path = {"app:main", "a:work"}, .process = "batch"}, 1, 100)
      .leak({.path = {"app:main", "b:work"}}, 1, 1000);
  const auto run = run_of("R", {first.trace, second.trace});
  EXPECT_EQ(collapsed(run),
            "(no call path) 1\n"
            "app:main 7\n"
            "app:main;a:work 100\n"
            "app:main;b:work 1015\n");
  EXPECT_EQ(collapsed(run_of("R", {second.trace, first.trace})), collapsed(run));
  EXPECT_EQ(collapsed(run, {.blocks = true, .ids = true}),
            "oic b;small;app:main;b:work 1\n"
            "oic core;large;app:main;b:work 2\n"
            "oic core;small;(no call path) 1\n"
            "oic core;small;app:main 3\n"
            "oic core;small;app:main;a:work 1\n"
            "oic core;small;app:main;b:work 1\n");
  EXPECT_EQ(collapsed(run, {.filter = {.process = "batch"}}), "app:main;a:work 100\n");
  EXPECT_EQ(collapsed(run_of("R", {made_profile().trace})), "");
}

TEST(Collapsed, NoNameBreaksALineAndLinesThatReadAlikeAreOne) {
  made_profile made;
  std::uint64_t bytes = 1;
  for (const char* name : {"a;b", "a,b", "line\nend", "line\r\tend", "blank 12", "\x1b[31m",
                           "\xff\xc2\x85", "naïve"}) {
    made.leak({.path = {"app:main", std::string("x:") + name}}, 1, bytes);
    bytes *= 10;
  }
  made.leak({.path = {"x:y"}, .id = "", .color = ";"}, 1, 3);
  const auto run = run_of("R", {made.trace});
  EXPECT_EQ(collapsed(run),
            "app:main;x:?? 1000000\n"
            "app:main;x:?[31m 100000\n"
            "app:main;x:a,b 11\n"
            "app:main;x:blank 12 10000\n"
            "app:main;x:line  end 1000\n"
            "app:main;x:line end 100\n"
            "app:main;x:naïve 10000000\n"
            "x:y 3\n");
  const std::string with_ids = collapsed(run, {.ids = true});
  EXPECT_EQ(with_ids.substr(0, with_ids.find('\n')), "(no name);,;x:y 3");
}

TEST(Speedscope, OneProfileForEachMeasureTraceAndProcess) {
  made_profile first("R", 1), second("R", 2);
  const std::string hostile = "app:\"</script>\xff\n;";
  first.leak({.path = {"app:main", hostile}}, 1, 10)
      .leak({.line = "other.c:2", .path = {"app:main", hostile}}, 2, 5)
      .leak({.path = {"app:main"}, .process = "batch"}, 3, 7)
      .add({.path = {"app:freed"}}, {{figure::made, {1, 1, 1}}, {figure::freed, {1, 1, 1}}});
  second.leak({.path = {}}, 1, 100).trace.losses = {{"records cut", 1, ""}};
  const auto run = run_of("R", {first.trace, second.trace});
  const auto json = test::read_json(written(
      run, {.format = export_format::speedscope, .of = {measure::leaked, measure::temporary}}));
  const auto& frames = json["shared"]["frames"];
  ASSERT_EQ(frames.size(), 3u) << "none that no profile has";
  EXPECT_EQ(frames[1]["name"].scalar, "app:\"</script>\xef\xbf\xbd\n;");
  const struct {
    const char* name;
    int samples, end;
  } wanted[] = {{"leaked: server (101), trace 1", 1, 15},
                {"leaked: batch (102), trace 1", 1, 7},
                {"leaked: server (101), trace 2, NOT COMPLETE", 1, 100},
                {"temporary: nothing", 0, 0}};
  const auto& profiles = json["profiles"];
  ASSERT_EQ(profiles.size(), std::size(wanted));
  for (std::size_t i = 0; i < std::size(wanted); ++i) {
    EXPECT_EQ(profiles[i]["name"].scalar, wanted[i].name);
    EXPECT_EQ(profiles[i]["type"].scalar, "sampled");
    EXPECT_EQ(profiles[i]["unit"].scalar, "bytes");
    EXPECT_EQ(profiles[i]["samples"].size(), static_cast<std::size_t>(wanted[i].samples));
    EXPECT_EQ(profiles[i]["weights"].size(), static_cast<std::size_t>(wanted[i].samples));
    EXPECT_EQ(profiles[i]["endValue"].number(), wanted[i].end);
  }
  EXPECT_EQ(profiles[0]["samples"][0].size(), 2u);
  EXPECT_EQ(profiles[0]["samples"][0][1].number(), 1) << "outermost first";
  EXPECT_EQ(frames[0]["name"].scalar, "(no call path)");
}

TEST(Pprof, ALineIsAFileAndANumberOnlyWhenThesePutTogetherAreTheLine) {
  const struct {
    const char *text, *file;
    std::int64_t line;
  } cases[] = {{"a.c:12", "a.c", 12},
               {"src:a.c:9223372036854775807", "src:a.c", INT64_MAX},
               {"a.c:9223372036854775808", "a.c:9223372036854775808", 0},
               {"a.c:0", "a.c:0", 0},
               {"a.c:07", "a.c:07", 0},
               {"a.c:-1", "a.c:-1", 0},
               {"a.c:+1", "a.c:+1", 0},
               {"a.c:1x", "a.c:1x", 0},
               {"a.c:", "a.c:", 0},
               {":12", ":12", 0},
               {"unknown line", "unknown line", 0},
               {"", "", 0}};
  for (const auto& [text, file, line] : cases) {
    EXPECT_EQ(parse_line(text).file, file) << text;
    EXPECT_EQ(parse_line(text).line, line) << text;
  }
}

TEST(Export, ASumThatReadersCannotHoldIsRefused) {
  constexpr std::uint64_t js = std::uint64_t{1} << 53, signed_limit = INT64_MAX;
  const struct {
    export_format format;
    std::uint64_t largest;
  } cases[] = {{export_format::collapsed, UINT64_MAX},
               {export_format::speedscope, js},
               {export_format::pprof, signed_limit}};
  for (const auto& [format, largest] : cases) {
    for (const bool too_large : {false, true}) {
      made_profile first("R", 1), second("R", 2);
      first.leak({}, 1, largest - 5);
      second.leak({.path = {}}, 1, too_large ? 6 : 5);
      const auto run = run_of("R", {first.trace, second.trace});
      run_export what;
      std::string error;
      EXPECT_EQ(make_export(run, {.format = format, .of = {measure::leaked}}, what, error),
                !too_large)
          << name_of(format);
      EXPECT_EQ(error.find(std::to_string(largest)) != std::string::npos, too_large) << error;
    }
  }
}

// What takes no byte.
class full_disk : public std::streambuf {};

TEST(Export, WhatCannotBeWrittenShows) {
  made_profile made;
  made.leak({}, 1, 1);
  const auto run = run_of("R", {made.trace});
  for (const auto format :
       {export_format::collapsed, export_format::speedscope, export_format::pprof}) {
    run_export what;
    std::string error;
    ASSERT_TRUE(make_export(run, {.format = format, .of = {measure::leaked}}, what, error));
    full_disk full;
    std::ostream out(&full);
    write_export(out, what);
    EXPECT_FALSE(out.good()) << name_of(format);
  }
}

// Nothing recurses, and what lies on the way is looked at once.
TEST(Export, PathsAreAsDeepAsTheyCome) {
  constexpr std::uint32_t deep = 10'000;
  made_profile made;
  profile& trace = made.trace;
  std::string line;
  for (std::uint32_t i = 1; i <= deep; ++i) {
    trace.functions.push_back({"o", std::to_string(i)});
    trace.paths.push_back({i - 1, i});
    line += (i > 1 ? ";o:" : "o:") + std::to_string(i);
  }
  block_group group;
  group[figure::left_with_id] = {1, 1, 1};
  for (std::uint32_t i = 0; i < 20'000; ++i) {
    group.path = deep - i % 2;
    trace.groups.push_back(group);
  }
  const auto run = run_of("R", {trace});
  const std::string shorter = line.substr(0, line.rfind(';'));
  EXPECT_EQ(collapsed(run), shorter + " 10000\n" + line + " 10000\n");
}

}  // namespace
}  // namespace kiv::exports
