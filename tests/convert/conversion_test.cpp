#include <algorithm>

#include "conversion_fixture.h"
#include "recording_text.h"
#include "support/run_trace.h"

// What becomes of a whole recording.
namespace kiv::test {
namespace {

using places = std::map<std::string, std::string>;
using Conversion = ConversionTest;

TEST_F(Conversion, AllFileFormatsTellTheSameBlocks) {
  for (const int format : {1, 2, 3}) {
    SCOPED_TRACE(format);
    recording r(format);
    const auto main = r.call("/usr/bin/app", {{"main", "src/app main.c", 10}});
    const auto load = r.call("/usr/bin/app", {{"load(char const*)", "src/load.c", 0x20}}, main);
    const auto large = r.allocation(0x1000, load), small = r.allocation(24, main);
    r.make(large).make(small).end(large).make(large);
    const converted made = convert(r.text());
    EXPECT_EQ(made.how, outcome::complete) << made.messages;
    EXPECT_EQ(losses(made.trace), std::vector<std::string>{});
    EXPECT_EQ(by_place(made.trace),
              (places{{"main | src/app main.c:10", "made 1:24 leaked 1:24"},
                      {"main load(char const*) | src/load.c:32", "made 2:8192 leaked 1:4096"}}));
    EXPECT_EQ(sum(made.trace, figure::freed), (amount{1, 4096, 4096}));
    EXPECT_EQ(made.trace.peak.live, (amount{2, 4120, 4120}));
    EXPECT_EQ(made.trace.peak.record, 2u);
  }
}

TEST_F(Conversion, WhoAllocatesIsTheInnermostFunctionThatIsNoOperatorNew) {
  recording r;
  const auto main = r.call("/usr/bin/app", {{"main", "app.cpp", 5}});
  // Two functions are inlined into a third.
  const auto fill =
      r.call("/usr/bin/app", {{"grow", "vec.h", 7}, {"push", "vec.h", 9}, {"fill"}}, main);
  const auto create = r.call("/lib/libstdc++.so.6", {{"operator new(unsigned long)"}}, fill);
  const auto create_array =
      r.call("/lib/libstdc++.so.6", {{"operator new[](unsigned long)"}}, create);
  const auto again = r.call("/usr/bin/app", {{"fill", "app.cpp", 8}}, fill);  // recursion
  const auto nobody = r.call("/lib/libstdc++.so.6", {{"operator new(unsigned long)"}});
  r.make(r.allocation(1, create)).make(r.allocation(2, create_array)).make(r.allocation(4, fill));
  r.make(r.allocation(8, again)).make(r.allocation(16, nobody)).make(r.allocation(32, 0));
  const converted made = convert(r.text());
  EXPECT_EQ(made.how, outcome::complete) << made.messages;
  EXPECT_EQ(by_place(made.trace),
            (places{{"main fill push grow | vec.h:7", "made 3:7 leaked 3:7"},
                    {"main fill push grow fill | app.cpp:8", "made 1:8 leaked 1:8"},
                    {"operator new(unsigned long) | libstdc++.so.6:operator new(unsigned long)",
                     "made 1:16 leaked 1:16"},
                    {"| unknown line", "made 1:32 leaked 1:32"}}));
}

TEST_F(Conversion, CodeWithoutNamesIsToldByModuleAndAddress) {
  recording r;
  const auto plain = r.call("/usr/lib/libx.so", {});
  const auto other = r.call("/opt/lib/libx.so", {}, plain);
  const auto line_only = r.call("/usr/lib/libx.so", {{"", "x.c", 3}}, other);
  r.make(r.allocation(1, plain)).make(r.allocation(2, other)).make(r.allocation(4, line_only));
  const converted made = convert(r.text());
  EXPECT_EQ(by_place(made.trace),
            (places{{"0xabc0 | libx.so:0xabc0", "made 1:1 leaked 1:1"},
                    {"0xabc0 0xabc1 | /opt/lib/libx.so:0xabc1", "made 1:2 leaked 1:2"},
                    {"0xabc0 0xabc1 0xabc2 | x.c:3", "made 1:4 leaked 1:4"}}));
  std::vector<std::string> ids;
  for (const profile_id& id : made.trace.ids) ids.push_back(id.name);
  EXPECT_EQ(ids, (std::vector<std::string>{"unknown id", "oic libx.so", "oic /opt/lib/libx.so"}));
}

TEST_F(Conversion, OnlyWhatStacksDoNotShareIsLeftAndEntered) {
  recording r;
  const auto deep = r.allocation(1, r.calls({"main", "a", "b", "c"}));
  const auto near = r.allocation(1, r.calls({"main", "a", "b", "d"}));
  const auto far = r.allocation(1, r.calls({"other"}));
  r.make(deep).make(near).make(near).make(far).make(deep);
  EXPECT_EQ(convert(r.text()).how, outcome::complete);
  const run_result run = run_kiv(dir_ / "run", {"-R", "."});
  const table arcs = run.rows("arcs"), flow = run.rows("flow");
  std::map<std::int64_t, std::string> callees;
  for (std::size_t i = 0; i < arcs.size(); ++i) {
    callees[arcs.number(i, "arc")] = arcs.text(i, "callee_function_name");
  }
  std::string steps;
  for (std::size_t i = 0; i < flow.size(); ++i) {
    if (flow.number(i, "flow") == 0) continue;  // the process starts
    if (flow.text(i, "direction") == "<") steps += " <";
    if (flow.text(i, "direction") == ">") steps += " " + callees[flow.number(i, "arc")];
  }
  EXPECT_EQ(steps, " main a b c < d < < < < other < main a b c < < < <");
}

TEST_F(Conversion, EqualBlocksEndYoungestFirstUnlessTheRawRecordingTellsWhich) {
  recording r;
  const auto stack = r.calls({"main"});
  const auto equal = r.allocation(100, stack), passing = r.allocation(7, stack);
  r.make(equal, 0x10).pass(passing, 200).make(equal, 0x20).end(equal, 0x10);
  // Only the younger one was short-lived. The raw recording alone knows of the end of a block that
  // was made before recording began.
  const std::string raw = r.raw_text() + "- 77770\n";
  EXPECT_EQ(sum(convert(r.text()).trace, figure::temporary).blocks, 201u);
  const converted exact = convert(r.text(), raw);
  EXPECT_EQ(exact.how, outcome::complete) << exact.messages;
  EXPECT_EQ(sum(exact.trace, figure::temporary).blocks, 200u);
  EXPECT_EQ(leaked(exact.trace), (amount{1, 100, 100}));
}

TEST_F(Conversion, ARawRecordingOfAnotherRunIsFoundOut) {
  recording r, other;
  for (recording* one : {&r, &other}) {
    const auto stack = one->calls({"main"});
    const auto first = one->allocation(100, stack), second = one->allocation(200, stack);
    one->make(first, 0x10).make(second, 0x20);
    one->end(one == &r ? first : second, one == &r ? 0x10 : 0x20).make(first, 0x30);
  }
  const std::string own = r.raw_text();
  const struct {
    std::string raw;
    outcome how;
    std::string_view message;
  } cases[] = {
      {other.raw_text(), outcome::incomplete, "raw tells other allocations from line 7 on"},
      {own.substr(0, own.find("+ c8")), outcome::incomplete, "raw ends too early, behind line 5"},
      {own.substr(0, own.size() - 1), outcome::incomplete, "the last line is cut"},
      {r.text(), outcome::refused, "raw: is no raw recording"},
      {"v 10400 3\n", outcome::refused, "raw: is no raw recording"},
      {"nonsense\n", outcome::refused, "raw: is no recording of heaptrack"},
  };
  for (const auto& [raw, how, message] : cases) {
    const converted made = convert(r.text(), raw);
    EXPECT_EQ(made.how, how) << message;
    EXPECT_NE(made.messages.find(message), std::string::npos) << made.messages;
    EXPECT_EQ(made.has_trace, how != outcome::refused) << message;
    const amount expected = made.has_trace ? amount{2, 300, 300} : amount{};
    EXPECT_EQ(leaked(made.trace), expected) << message;
  }
}

TEST_F(Conversion, BlocksBeyondFourGigabytesKeepTheirSize) {
  constexpr std::uint64_t gigabyte = std::uint64_t{1} << 30;
  recording r;
  const auto main = r.call("/usr/bin/app", {{"main"}}), lib = r.call("/usr/lib/x.so", {{"x"}});
  const auto large = r.allocation(10 * gigabyte + 1, main);
  const auto most = r.allocation(UINT32_MAX, lib), nothing = r.allocation(0, lib);
  r.make(large).make(large).end(large).make(most).make(most).end(most).make(nothing).end(nothing);
  const converted made = convert(r.text());
  EXPECT_EQ(made.how, outcome::complete);
  EXPECT_EQ(made.messages, "allocations of more than 4 GiB, which are several blocks each: 2\n");
  EXPECT_EQ(losses(made.trace), std::vector<std::string>{});
  EXPECT_EQ(sum(made.trace, figure::made).bytes, 20 * gigabyte + 2 + 2 * std::uint64_t{UINT32_MAX});
  EXPECT_EQ(leaked(made.trace).bytes, 10 * gigabyte + 1 + UINT32_MAX);
  EXPECT_EQ(made.trace.peak.live.bytes, 20 * gigabyte + 2);
}

TEST_F(Conversion, TimeHeapAndCommandAreThoseOfTheRecording) {
  recording r;
  const auto stack = r.calls({"main"});
  r.time(0).resident(3).make(r.allocation(8, stack)).time(1500).resident(2).resident(5).line("A");
  const converted made = convert(r.text());
  EXPECT_EQ(made.how, outcome::complete) << made.messages;
  EXPECT_EQ(made.trace.program, "app");
  EXPECT_EQ(made.trace.environment, "heaptrack 1.4.0");
  EXPECT_EQ(made.trace.pid, 4711);
  EXPECT_EQ(made.trace.heap_bytes, 5u * 4096) << "memory that was given back counts once";
  std::vector<std::string> marks;
  for (const program_mark& mark : made.trace.marks) {
    marks.push_back(mark.time.substr(mark.time.find(':')) + " " + mark.text);
  }
  EXPECT_EQ(marks, (std::vector<std::string>{":13:20.250 start of /usr/bin/app --fast",
                                             ":13:21.750 recorder attached to the running program",
                                             ":13:21.750 end after 1.500 s"}));
  EXPECT_EQ(made.trace.end.substr(made.trace.end.find(':')), ":13:21.750");
}

TEST_F(Conversion, LinesOfACommandAreNoRecords) {
  const auto text = [](std::string_view command) {
    recording r;
    r.make(r.allocation(8, r.calls({"main"})));
    std::string all = r.text();
    return all.replace(all.find("X /usr"), all.find("I 1000") - all.find("X /usr"), command);
  };
  for (const std::string command :
       {"", "X app\n", "X \n", "X app -c one\n+ 0\nI 2000\n\ns 1 x\n# ips: 2\nlast\n"}) {
    const converted made = convert(text(command));
    EXPECT_EQ(made.how, outcome::complete) << command << made.messages;
    EXPECT_EQ(by_place(made.trace), (places{{"main | app:main", "made 1:8 leaked 1:8"}}));
    std::string shown = command.substr(std::min<std::size_t>(command.size(), 2));
    if (!shown.empty()) shown.pop_back();
    std::ranges::replace(shown, '\n', ' ');
    EXPECT_EQ(made.trace.marks.at(0).text, "start of " + shown);
  }
}

TEST_F(Conversion, CallsBeyondTheDepthLimitAreLeftOutAndSaid) {
  recording r;
  std::uint64_t stack = 0;
  for (int i = 0; i < 1500; ++i) {
    stack = r.call("/usr/bin/app",
                   {{i == 1499 ? "deepest" : "again", "app.c", i % 2 == 0 ? 1u : 2u}}, stack);
  }
  r.make(r.allocation(8, stack));
  const converted made = convert(r.text());
  EXPECT_EQ(made.how, outcome::incomplete);
  EXPECT_EQ(made.messages, "calls beyond a depth of 1024 or 33554432 call paths are left out\n");
  EXPECT_EQ(leaked(made.trace), (amount{1, 8, 8}));
  EXPECT_EQ(made.trace.lines.at(1), "app.c:2");
}

}  // namespace
}  // namespace kiv::test
