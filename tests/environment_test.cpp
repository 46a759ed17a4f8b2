#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/run_trace.h"
#include "support/trace_builder.h"
#include "tables/csv_tables.h"

// A system that refuses, and names that bite.

namespace kiv::test {
namespace {

namespace fs = std::filesystem;

// Runs a command in the directory; "kiv" stands for the program. Nothing may block.
run_result run_shell(const temp_dir& dir, const std::string& command) {
  return run_kiv(dir.path(), {"-c", "kiv() { timeout 60 " KIV_PROGRAM " \"$@\"; }; " + command},
                 "/bin/sh");
}

trace small_trace() {
  trace t;
  return t.reserve(1, "oic:x").malloc_wf(1, 0, 16, 8, 8).marker("done");
}

// More messages than a stream buffer holds, so that some are written while tables are open.
trace talkative_trace() {
  trace t = small_trace();
  for (int i = 0; i < 500; ++i) t.free(1, 0, 0x1000);
  return t;
}

std::ptrdiff_t count(const std::string& text, const std::string& word) {
  std::ptrdiff_t found = 0;
  for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; ++at) ++found;
  return found;
}

TEST(Environment, WhatTheSystemRefusesIsReportedAndTheRunGoesOn) {
  const std::string memory = "kiv.RUN.memory.1.csv", script = "kiv.RUN.sql";
  const std::string header = talkative_trace().header_name(), data = talkative_trace().data_name(0);
  const auto link = [](const std::string& name, const char* target) {
    return [name, target](const temp_dir& dir) { fs::create_symlink(target, dir / name); };
  };
  const auto fifo = [](const std::string& name) {
    return [name](const temp_dir& dir) {
      fs::remove(dir / name);
      ASSERT_EQ(mkfifo((dir / name).c_str(), 0600), 0);
    };
  };
  const auto directory = [](const std::string& name) {
    return [name](const temp_dir& dir) {
      fs::remove(dir / name);
      fs::create_directory(dir / name);
    };
  };
  const auto nothing = [](const temp_dir&) {};
  const std::string run = "kiv -H " + header;
  const auto then_remove = [&run](const std::string& name) {  // its bytes have no end
    return run + "; status=$?; rm " + name + "; exit $status";
  };
  const std::string lost_output = "cannot write standard output\n";
  const std::string no_data = " error opening ./" + data + "'\ncannot open file ./" + data + "\n";

  enum tables { all, all_but_memory, all_but_script, empty, none };
  const struct {
    const char* what;
    std::function<void(const temp_dir&)> prepare;
    std::string command;
    std::string message;
    tables left = all;
  } cases[] = {
      {"a table cannot be created", link(memory, "missing/file"), run,
       "cannot write ./" + memory + "\n", all_but_memory},
      {"a table is not wanted", directory(memory), run, "", all_but_memory},
      {"the script cannot be created", link(script, "missing/file"), run, "", all_but_script},
      {"no space for a table", link(memory, "/dev/full"), then_remove(memory),
       "cannot write ./" + memory + "\n", all_but_memory},
      {"no space for the script", link(script, "/dev/full"), then_remove(script),
       "cannot write ./" + script + "\n", all_but_script},
      {"no space for messages", nothing, run + " >/dev/full", lost_output},
      {"output closed", nothing, run + " >&-", lost_output},
      {"all streams closed", nothing, run + " <&- >&- 2>&-", ""},
      {"broken pipe", nothing, "{ sleep 0.2; " + run + "; } | true", lost_output},
      {"data file is a directory", directory(data), run, no_data, empty},
      {"data file is a FIFO", fifo(data), run, no_data, empty},
      {"data file is gone", [&](const temp_dir& dir) { fs::remove(dir / data); }, run, no_data,
       empty},
      {"header is a FIFO", fifo(header), run, "header file ./" + header + " cannot be opened\n",
       none},
      {"header is gone", [&](const temp_dir& dir) { fs::remove(dir / header); }, run,
       "header file ./" + header + " cannot be opened\n", none},
      {"header is a directory", directory(header), run,
       "header file ./" + header + " cannot be opened\n", none},
      {"headers of a directory that are none", fifo("x.kivhdr"), "kiv -R .", ""},
  };

  const temp_dir undisturbed;
  ASSERT_TRUE(talkative_trace().write(undisturbed.path(), "."));
  const run_result expected = run_shell(undisturbed, run);
  ASSERT_EQ(expected.files.size(), csv_tables().size() + 1);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const temp_dir dir;
    ASSERT_TRUE(talkative_trace().write(dir.path(), "."));
    c.prepare(dir);
    const run_result result = run_shell(dir, c.command);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(c.message.empty() || count(result.err, c.message) == 1) << result.err;
    EXPECT_EQ(count(result.err, "cannot"), c.message.find("cannot") != std::string::npos ? 1 : 0);
    for (const auto& [name, bytes] : expected.files) {
      if (c.left == none || (c.left == all_but_memory && name == memory)) continue;
      if (c.left == all_but_script && name == script) continue;
      ASSERT_TRUE(result.files.contains(name)) << name;
      if (c.left == empty && name != "kiv.RUN.runs.1.csv") continue;
      EXPECT_EQ(first_difference(bytes, result.files.at(name)), "") << name;
    }
  }
}

TEST(Environment, NamesThatBite) {
  for (const std::string name : {"a b", "it's", "say \"x\"", "$(reboot);*?", "\xff\xfe", "-R"}) {
    SCOPED_TRACE(name);
    const temp_dir dir;
    ASSERT_TRUE(small_trace().write(dir.path(), "."));  // the data files
    ASSERT_TRUE(small_trace().write(dir / name, "."));
    for (const run_result& result :
         {run_kiv(dir.path(), {"-R", name}, KIV_PROGRAM),
          run_kiv(dir.path(), {"-H", name + "/" + small_trace().header_name()}, KIV_PROGRAM)}) {
      EXPECT_EQ(result.status, 0);
      EXPECT_EQ(result.rows("memory").size(), 1U) << result.err;
    }
  }

  const std::string longest(200, 'x');
  const struct {
    std::string in_header;  // as it stands there
    std::string in_names;
    std::string in_rows;
  } run_ids[] = {
      {"a b", "a b", "a b"},
      {"../../x", ".._.._x", "../../x"},
      {"/tmp/x", "_tmp_x", "/tmp/x"},
      {"it's &quot;x&quot;", "it_s \"x\"", "it's \"x\""},
      {"a&#10;b&#9;c&#13;\x7f", "a_b_c__", "a\nb\tc\r\x7f"},
      {"\xe4", "\xc3\xa4", "\xc3\xa4"},
      {std::string(5000, 'x'), longest, std::string(5000, 'x')},
      {"", "", ""},
      {"..", "..", ".."},
  };
  for (const auto& id : run_ids) {
    SCOPED_TRACE(id.in_header.substr(0, 20));
    const temp_dir dir;
    ASSERT_TRUE(small_trace().runid("ID").write(dir / "in", "in"));
    std::string header = small_trace().runid("ID").header("in");
    header.replace(header.find("\"ID\"") + 1, 2, id.in_header);
    ASSERT_TRUE(write_file(dir / "in/" + small_trace().header_name(), header));
    const run_result result = run_kiv(dir.path(), {"-R", "in"}, KIV_PROGRAM);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.files.size(), csv_tables().size() + 1);
    for (const auto& file : fs::directory_iterator(dir.path())) {
      const std::string name = file.path().filename();
      EXPECT_TRUE(name == "in" || name == "stdout" || name == "stderr") << name;
    }
    ASSERT_TRUE(fs::is_regular_file(dir / "in/kiv." + id.in_names + ".runs.1.csv"));
    EXPECT_TRUE(result.bytes("runs").starts_with(id.in_rows + ";"));
    const std::string script = read_file(dir / "in/kiv." + id.in_names + ".sql");
    EXPECT_EQ(count(script, "SET @RUNID = '" + id.in_names + "'\n"), 1);
    EXPECT_EQ(count(script, "\n"), 7 + 18);
  }
}

TEST(Environment, ManyHeadersAndALargeOne) {
  const temp_dir dir;
  ASSERT_TRUE(small_trace().write(dir / "in", "in"));
  const std::string header = dir / "in/" + small_trace().header_name();
  constexpr int headers = 2000;
  for (int i = 1; i < headers; ++i) {
    fs::create_hard_link(header, dir / "in/" + std::to_string(i) + ".kivhdr");
  }
  run_result result = run_shell(dir, "kiv -R in");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(count(result.out, "Processing: "), headers);
  EXPECT_EQ(count(result.bytes("runs"), "\n"), headers);
  EXPECT_EQ(count(result.bytes("memory"), "\n"), headers);

  std::string text = small_trace().header("in"), filler;
  while (filler.size() < 20'000'000) filler += "<later value=\"1\"><part/>text</later>\n";
  text.insert(text.find("<filetype"), filler);
  ASSERT_TRUE(write_file(dir / "large.kivhdr", text));
  result = run_shell(dir, "kiv -H large.kivhdr");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(count(read_file(dir / "kiv.RUN.memory.1.csv"), "\n"), 1);
}

}  // namespace
}  // namespace kiv::test
