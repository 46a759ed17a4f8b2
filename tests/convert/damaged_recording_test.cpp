#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "conversion_fixture.h"
#include "packed_text.h"
#include "recording_text.h"

// What can be read is converted, and what is lost is named with its place.
namespace kiv::test {
namespace {

using DamagedRecording = ConversionTest;

// Two blocks of 100 bytes are made, one of them ends: 16 lines and the two closing ones.
recording small() {
  recording r;
  const auto stack = r.calls({"main", "fill"});
  const auto block = r.allocation(100, stack);
  return r.make(block).make(block).end(block);
}

// The trace of a recording that broke off is that of a process that was killed, and no worse.
void expect_left_open(const converted& made) {
  EXPECT_EQ(losses(made.trace), std::vector<std::string>{"header not closed"});
}

TEST_F(DamagedRecording, ALineThatCannotBeUsedIsLostAlone) {
  const std::size_t lines = small().lines();
  std::string inlined_too_often = "i 10 1";
  for (int i = 0; i < 300; ++i) inlined_too_often += " 2 0 1";
  std::istringstream unusable(
      inlined_too_often + "\n" +
      "+\n+ \n+ 1\n+ -1\n+ zz\n+ 00000000000000000\n+ 0x0\n- 1\nc\nc fffffffffff\n"
      "R ffffffffffffff\n? 0\njunk\ns 3 ab\ns x\ni\ni 10\ni 10 9\ni 10 1 9\ni 10 1 2 9\n"
      "t 1\nt 0 0\nt 3 0\nt 1 3\na 10\na 10 3\na 4000000001 1\nv 10400 3\nX app\n"
      "I 1000 4000\n");
  for (std::string line; std::getline(unusable, line);) {
    recording r = small();
    r.line(line);
    const converted made = convert(r.text());
    EXPECT_EQ(made.how, outcome::incomplete) << line;
    EXPECT_EQ(made.messages, "line " + std::to_string(lines + 1) + " cannot be read\n") << line;
    EXPECT_EQ(leaked(made.trace), (amount{1, 100, 100})) << line;
    expect_left_open(made);
  }
}

TEST_F(DamagedRecording, WhatRefersToALostLineIsKeptWithoutIt) {
  recording r;
  r.line("i 10 77").line("t 1 0").line("t 99 0").line("a 8 1").line("a 10 2").line("a 20 zz");
  r.line("+ 0").line("+ 1").line("+ 2").line("- 2").line("- 2");
  const converted made = convert(r.text());
  EXPECT_EQ(made.messages,
            "3 lines cannot be read, the first of them is line 4\n"
            "line 14 ends a block that is not live\n");
  EXPECT_EQ(by_place(made.trace), (std::map<std::string, std::string>{
                                      {"0x0 | (unknown module):0x0", "made 1:8 leaked 1:8"},
                                      {"| unknown line", "made 2:16 leaked 1:16"}}));
}

TEST_F(DamagedRecording, WhateverIsCutOffTheRestIsConverted) {
  const std::string text = small().text();
  ASSERT_EQ(convert(text).how, outcome::complete);
  const std::size_t head = text.find('\n') + 1;
  for (std::size_t size = 0; size < text.size(); ++size) {
    SCOPED_TRACE(size);
    const std::string_view whole_lines =
        std::string_view(text).substr(0, text.rfind('\n', size - 1) + 1);
    const converted made = convert(text.substr(0, size));
    EXPECT_EQ(made.how, size < head ? outcome::refused : outcome::incomplete);
    EXPECT_EQ(made.has_trace, size >= head);
    if (size < head) continue;
    const auto line = std::ranges::count(text.substr(0, size), '\n');
    const bool cut_in_line = text[size - 1] != '\n';
    EXPECT_EQ(made.messages,
              std::string(cut_in_line ? "the last line is cut" : "the recording breaks off") +
                  " behind line " + std::to_string(line) + "\n");
    expect_left_open(made);
    const auto count = [&](std::string_view event) {
      std::uint64_t found = 0;
      for (std::size_t at = 0; (at = whole_lines.find(event, at)) != std::string_view::npos; ++at)
        ++found;
      return found;
    };
    EXPECT_EQ(sum(made.trace, figure::made).blocks, count("\n+"));
    EXPECT_EQ(sum(made.trace, figure::freed).blocks, count("\n-"));
  }
}

TEST_F(DamagedRecording, AProgramThatDidNotCleanUpIsSaidToLackItsLastEvents) {
  for (const char* last : {"+ 0", "- 0", "c 7", "A"}) {
    const converted made = convert(small().cut() + last + "\n# strings: 3\n# ips: 2\n");
    EXPECT_EQ(made.how, outcome::incomplete) << last;
    EXPECT_TRUE(made.messages.starts_with("the program was killed or left by")) << made.messages;
    expect_left_open(made);
  }
}

TEST_F(DamagedRecording, PackedFilesSayWhereTheyBreakOff) {
  recording r = small();
  std::mt19937 random(1);  // lines that do not pack well
  for (int i = 0; i < 60'000; ++i) r.time(random());
  r.pass(0, 1000);
  const std::string text = r.text();
  for (const auto& pack : {zstd_of, gzip_of}) {
    const std::string packed = pack(text);
    const converted whole = convert(packed);
    EXPECT_EQ(whole.how, outcome::complete) << whole.messages;
    EXPECT_EQ(sum(whole.trace, figure::made).blocks, 1002u);
    // Files that follow one another are one.
    EXPECT_EQ(convert(pack(text.substr(0, 1000)) + pack(text.substr(1000))).how, outcome::complete);

    for (const std::size_t part : {4u, 2u}) {
      const converted made = convert(packed.substr(0, packed.size() - packed.size() / part));
      EXPECT_EQ(made.how, outcome::incomplete);
      EXPECT_TRUE(
          made.messages.starts_with("the file breaks off within its packed data behind line "))
          << made.messages;
      EXPECT_EQ(sum(made.trace, figure::made).blocks, 2u);
      expect_left_open(made);
    }
    std::string damaged = packed;
    for (std::size_t i = packed.size() / 2; i < packed.size() / 2 + 16; ++i) damaged[i] ^= 0x55;
    const converted made = convert(damaged);
    EXPECT_EQ(made.how, outcome::incomplete);
    EXPECT_NE(made.messages.find("behind line "), std::string::npos) << made.messages;
    EXPECT_EQ(convert(packed + "rubbish").how, outcome::incomplete);
    EXPECT_EQ(convert(packed.substr(0, 6)).how, outcome::refused);
  }
}

TEST_F(DamagedRecording, WhatIsNoRecordingLeavesNothing) {
  const struct {
    std::string text;
    std::string_view message;
  } cases[] = {
      {"", "is empty"},
      {"v 10400 3", "is no recording: the last line is cut"},
      {"{\"json\": true}\n", "is no recording of heaptrack"},
      {"v 10400\n", "is no recording of heaptrack"},
      {"v 10400 0\n", "has the recorder's file format 0; 1 to 3 can be read"},
      {"v 10400 4\n", "has the recorder's file format 4; 1 to 3 can be read"},
      {small().raw_text(), "is a raw recording; heaptrack_interpret"},
      {"v 10000 1\nX app\nI 1000 40\nm app 0 400000\n", "is a raw recording"},
      {"v 10000 1\nX app\nm app 0 400000\n", "is a raw recording"},
      {std::string(std::size_t{17} << 20, 'v'), "a line is longer than 16 MiB"},
      {"\x28\xb5\x2f\xfd and what is no zstd", "is no recording: the packed data is damaged"},
      {"\x1f\x8b and what is no gzip", "is no recording: the packed data is damaged"},
  };
  for (const auto& [text, message] : cases) {
    const converted made = convert(text);
    EXPECT_EQ(made.how, outcome::refused) << message;
    EXPECT_NE(made.messages.find(message), std::string::npos) << made.messages;
    EXPECT_FALSE(made.has_trace) << message;
  }
}

}  // namespace
}  // namespace kiv::test
