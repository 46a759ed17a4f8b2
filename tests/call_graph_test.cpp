#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/run_trace.h"
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

}  // namespace
}  // namespace kiv::test
