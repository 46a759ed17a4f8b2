#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "replay/kiv_process.h"
#include "replay/observer.h"
#include "support/replay_in_memory.h"
#include "support/run_trace.h"
#include "support/stories.h"
#include "support/trace_builder.h"

// The call graph of a process, as its tables show it.

namespace kiv::test {
namespace {

constexpr std::uint32_t pid = 7;
using function = std::pair<std::uint32_t, std::int32_t>;  // object and number

// What the tables should show, kept the plain way.
struct plain_call_graph {
  std::map<std::pair<function, function>, std::uint32_t> arcs{{{{pid, 0}, {pid, 0}}, 0}};
  std::vector<std::pair<function, std::uint32_t>> stack{{{pid, 0}, 0}};
  struct row {
    std::size_t depth;
    std::uint32_t arc;
    char direction;
  };
  std::vector<row> flow{{2, 0, '>'}};

  void enter(function callee) {
    const auto next = static_cast<std::uint32_t>(arcs.size());
    const auto arc = arcs.try_emplace({stack.back().first, callee}, next).first->second;
    stack.emplace_back(callee, arc);
    flow.push_back({stack.size(), arc, '>'});
  }
  void leave() {
    flow.push_back({stack.size(), stack.back().second, '<'});
    stack.pop_back();
  }
};

TEST(CallGraph, EachPairOfCallerAndCalleeHasOneArcNumberedByItsFirstCall) {
  // Where numbers of objects and functions no longer share a word.
  constexpr std::uint32_t few = 1 << 12, many = 1 << 19;
  const struct {
    std::uint32_t objects;
    std::int32_t functions;  // of each object
    std::size_t deepest;
    std::uint32_t first_object = 1;
    std::int32_t first_function = 1;
  } cases[] = {{1, 1, 2},
               {1, 11, 2},
               {1, 12, 2},
               {1, 13, 2},
               {1, 60, 2},
               {2, 7, 4},
               {3, 30, 9},
               {4, 5, 4, few - 2},
               {4, 5, 4, many - 2},
               {2, 9, 4, 1, few - 5},
               {2, 9, 4, few, few - 5}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.objects << " objects of " << c.functions << " from "
                                    << c.first_object << ':' << c.first_function);
    std::minstd_rand random(11);
    trace t;
    t.proc(pid, "server").special(pid, 0, "main").schedule(0, pid);
    for (std::uint32_t i = 0; i < c.objects; ++i) {
      const std::uint32_t object = c.first_object + i;
      t.reserve(object, "oic:object").object(object).link(pid, object);
      for (int f = 1; f < c.first_function + c.functions; ++f) {
        t.function(object, f, "f" + std::to_string(f));
      }
    }
    plain_call_graph graph;
    for (int call = 0; call < 1'000; ++call) {
      const function callee{c.first_object + random() % c.objects,
                            c.first_function + static_cast<std::int32_t>(random()) % c.functions};
      const bool leaves = graph.stack.size() == c.deepest || random() % 3 == 0;
      if (graph.stack.size() > 1 && leaves) {
        t.flow_out();
        graph.leave();
        continue;
      }
      const auto [parent, parent_number] = graph.stack.back().first;
      t.flow_in(parent, parent_number, callee.first, callee.second);
      graph.enter(callee);
      // A process keeps the functions as it saw them when it first called one of the object.
      if (random() % 8 == 0) t.function(callee.first, callee.second, "announced again");
    }
    const run_result run = run_trace(t.proc_end(pid));

    const table flow = run.rows("flow"), arcs = run.rows("arcs");
    ASSERT_EQ(flow.size(), graph.flow.size());
    for (std::size_t i = 0; i < flow.size(); ++i) {
      SCOPED_TRACE(i);
      ASSERT_EQ(flow.number(i, "flow"), static_cast<std::int64_t>(i));
      ASSERT_EQ(flow.number(i, "depth"), static_cast<std::int64_t>(graph.flow[i].depth));
      ASSERT_EQ(flow.number(i, "arc"), graph.flow[i].arc);
      ASSERT_EQ(flow.text(i, "direction")[0], graph.flow[i].direction);
    }
    ASSERT_EQ(arcs.size(), graph.arcs.size());
    for (const auto& [pair, arc] : graph.arcs) {
      SCOPED_TRACE(arc);
      const auto& [caller, callee] = pair;
      EXPECT_EQ(arcs.number(arc, "arc"), arc);
      EXPECT_EQ(arcs.number(arc, "caller_object"), caller.first);
      EXPECT_EQ(arcs.number(arc, "caller_function"), caller.second);
      EXPECT_EQ(arcs.number(arc, "callee_object"), callee.first);
      EXPECT_EQ(arcs.number(arc, "callee_function"), callee.second);
      if (callee.second == 0) continue;
      EXPECT_EQ(arcs.text(arc, "callee_function_name"), "f" + std::to_string(callee.second));
    }
  }
}

// The call stack at each memory record.
class stack_log : public replay_observer {
 public:
  stack_log(const kiv_reader& reader, bool follows) : reader_(reader), follows_(follows) {}

  bool follows_calls() const override { return follows_; }
  void memory_changed(const memory_change& change) override {
    const KivProcess& process = *reader_.cc_curr_proc();
    log << "record " << reader_.event_number() << ' ' << change.addr << ", process "
        << process.pid() << " after " << process.flow_counter() << " calls:";
    for (const Func_context& entry : process.stack()) {
      log << ' ' << (entry.function == nullptr ? "none" : entry.function->name()) << " by "
          << entry.arc;
    }
    log << '\n';
  }

  std::ostringstream log;

 private:
  const kiv_reader& reader_;
  const bool follows_;
};

std::string stacks_of(trace& t, bool follows) {
  diagnostics silent;
  replay_in_memory replay(t, silent);
  stack_log observer(replay.reader(), follows);
  replay.reader().ReadEvents(observer);
  return observer.log.str() + std::to_string(replay.reader().event_number());
}

// Calls of two processes, some of them from elsewhere than where the process stands, of functions
// that are not there, or left more often than entered.
void random_calls(trace& t, unsigned seed) {
  std::minstd_rand random(seed);
  const auto below = [&](std::uint32_t n) { return static_cast<std::uint32_t>(random()) % n; };
  const auto number = [&] { return static_cast<std::int32_t>(below(16)) - 1; };
  t.reserve(1, "oic:a").object(1).reserve(2, "oic:b").object(2).proc(7, "p").proc(8, "q");
  for (const std::uint32_t process : {7u, 8u}) t.special(process, 0, "main").link(process, 1);
  t.link(7, 2).schedule(0, 7);
  for (std::uint32_t object : {1u, 2u}) {
    for (int f = 1; f < 13; ++f) t.function(object, f, std::to_string(object) + std::to_string(f));
  }
  std::vector<std::pair<std::uint32_t, std::int32_t>> stack{{7, 0}};
  for (int i = 0; i < 3'000; ++i) {
    switch (below(16)) {
      case 0:
        t.schedule(0, 7 + below(2));
        break;
      case 1:
        t.special(7 + below(2), number() % 2, "special" + std::to_string(i));
        break;
      case 2:
        t.flow_in(below(4), number(), below(4), number());
        break;
      case 3:
      case 4:
        t.malloc_wf(1, 0, std::int64_t{16} * (i + 1), 8, 8);
        break;
      case 5:
      case 6:
      case 7:
      case 8:
      case 9:
        t.flow_out();
        if (stack.size() > 1) stack.pop_back();
        break;
      default: {
        std::pair callee{1 + below(2), 1 + static_cast<std::int32_t>(below(12))};
        if (below(6) == 0) callee.second = -static_cast<std::int32_t>(below(2));
        t.flow_in(stack.back().first, stack.back().second, callee.first, callee.second);
        stack.push_back(callee);
      }
    }
  }
}

TEST(CallGraph, StacksAreTheSameWhetherOrNotEachCallIsFollowed) {
  std::vector<story> stories = clean_stories();
  stories.insert(stories.end(), damaged_stories().begin(), damaged_stories().end());
  for (unsigned seed = 1; seed <= 6; ++seed) {
    const auto calls = [=](trace& t) { random_calls(t, seed); };
    stories.push_back({"calls", calls});
    stories.push_back({"big-endian", [=](trace& t) { calls(t.big_endian()); }});
    stories.push_back({"narrow numbers", [=](trace& t) { calls(t.width('I', "child_funnr", 2)); }});
    stories.push_back({"one more field", [=](trace& t) { calls(t.extra_field('I')); }});
    stories.push_back({"not declared", [=](trace& t) { calls(t.without_entry('O')); }});
    stories.push_back({"files", [=](trace& t) { calls(t.split_after(5)); }});
    stories.push_back({"cut", [=](trace& t) {
                         calls(t.split_after(50));
                         for (std::size_t i = 0; i < t.file_count(); ++i) {
                           t.data(i).resize(t.data(i).size() - i % 20);
                         }
                       }});
  }
  stories.push_back({"calls beyond windows", [](trace& t) {
                       random_calls(t, 1);
                       t.flow_in(7, 0, 1, 1);
                       for (int i = 0; i < 20'000; ++i) t.flow_in(1, 1, 1, 2).flow_out();
                       t.malloc_wf(1, 0, 8, 8, 8);
                     }});
  for (const story& one : stories) {
    SCOPED_TRACE(one.name);
    trace t;
    one.tell(t);
    EXPECT_EQ(first_difference(stacks_of(t, true), stacks_of(t, false)), "");
  }
}

}  // namespace
}  // namespace kiv::test
