#include "support/stories.h"

#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace kiv::test {

const std::vector<story>& clean_stories() {
  static const std::vector<story> all = {
      {"blocks_with_and_without_free", blocks_with_and_without_free, {"memory", "freemem"}},
      {"resized_blocks", resized_blocks, {"memory", "freemem"}},
      {"blocks_of_several_processes", blocks_of_several_processes, {"memory", "freemem"}},
      {"freed_and_reset_ids",
       freed_and_reset_ids,
       {"memory", "freemem", "malid", "color", "marker"}},
      {"reservation_texts", reservation_texts, {"malid", "process"}},
      {"far_ids_and_colors", far_ids_and_colors, {"memory", "freemem", "malid", "objects"}},
      {"heap_gaps_and_arena", heap_gaps_and_arena, {"sbrk", "arena", "memory"}},

      {"processes_start_run_and_end",
       processes_start_run_and_end,
       {"process", "marker", "memory", "arcs", "flow", "arena"}},
      {"calls_and_arcs", calls_and_arcs, {"flow", "arcs", "memory"}},
      {"many_callees", many_callees, {"arcs"}},
      {"replaced_specials", replaced_specials, {"flow", "arcs"}},
      {"late_announcements", late_announcements, {"objects", "functions", "flow", "arcs"}},
      {"objects_that_were_never_loaded",
       objects_that_were_never_loaded,
       {"objects", "functions", "flow", "arcs"}},
      {"calls_outside_of_processes", calls_outside_of_processes, {"flow", "arcs", "marker"}},
      {"hosk_calls", hosk_calls, {"memory", "sbrk", "arena"}},
      {"symbols_by_flow", symbols_by_flow, {"symbols", "flowdata"}},

      {"run_and_source_lines", run_and_source_lines, {"runs", "hashloc"}, {"-T", "two words"}},
      {"times_and_markers", times_and_markers, {"marker", "memory"}},
      {"sql_brackets", sql_brackets, {"queries", "queryevents", "memory", "sbrk", "arena"}},
      {"every_record_type_once", every_record_type_once, {"records"}, {"-D"}},
  };
  return all;
}

const std::vector<story>& damaged_stories() {
  static const std::vector<story> all = {
      {"nothing_announced", nothing_announced, {"memory", "flow", "process", "messages", "stderr"}},
      {"announced_twice",
       announced_twice,
       {"messages", "stderr", "malid", "color", "process", "memory", "objects", "functions",
        "hashloc", "symbols", "queries", "queryevents"}},
      {"numbers_of_nothing",
       numbers_of_nothing,
       {"messages", "records", "memory", "color", "flow", "arcs", "process"},
       {"-D"}},
      {"illegal_addresses", illegal_addresses, {"messages", "stderr", "memory", "freemem"}},
      {"totals_that_differ", totals_that_differ, {"messages", "memory"}},
      {"impossible_values",
       impossible_values,
       {"stderr", "memory", "sbrk", "arena", "symbols", "flowdata"}},
      {"records_out_of_sync", records_out_of_sync, {"messages", "stderr", "marker", "flow"}},
  };
  return all;
}

void random_operations(trace& t, std::uint32_t seed, int operations) {
  std::mt19937 engine(seed);
  const auto below = [&](std::uint32_t n) { return static_cast<std::uint32_t>(engine() % n); };
  t.pid(1).runid("RANDOM").start(1'700'000'000).end(1'700'000'100);
  t.hashloc(1, "a.c:1").hashloc(2, "b.c:2");
  for (std::uint32_t pid = 1; pid <= 4; ++pid)
    t.proc(pid, "p" + std::to_string(pid)).special(pid, 0, "main");
  for (std::uint32_t id = 1; id <= 5; ++id) {
    t.reserve(id, "oic:object", 3).color(0, "a").color(1, "b").object(id);
    for (int f = 1; f < 5; ++f) t.function(id, f, "f" + std::to_string(f));
    for (std::uint32_t pid = 1; pid <= 4; ++pid) t.link(pid, id);
  }

  struct block {
    std::uint32_t id, color;
    std::int64_t addr;
  };
  std::vector<block> blocks{{1, 0, 16}};
  block next{}, known{};
  std::uint32_t size = 0, last_pid = 4;
  std::int64_t at = 0;
  const std::function<void()> frequent[] = {
      [&] { t.malloc_wf(next.id, next.color, next.addr, size, size + 16, at); },
      [&] { t.malloc_wf(next.id, next.color, next.addr, size, size + 16, at); },
      [&] { t.malloc_wf(next.id, next.color, next.addr, size, size + 16, at); },
      [&] { t.malloc_wf(known.id, 0, next.addr, size, size + 16, at, known.addr); },
      [&] { t.malloc_nf(next.id, next.color, next.addr, size, size + 16, at); },
      [&] { t.free(known.id, known.color, known.addr, at); },
      [&] { t.free(known.id, below(4), known.addr, at); },
      [&] { t.realloc(known.id, known.color, known.addr, size, size + 16, at); },
      [&] { t.schedule(0, below(last_pid + 2)); },
      [&] {
        const std::uint32_t n[] = {below(5), below(6), below(5), below(6)};  // in this order
        t.flow_in(n[0] + 1, static_cast<int>(n[1]) - 1, n[2] + 1, static_cast<int>(n[3]) - 1);
      },
      [&] { t.flow_out(); },
  };
  const std::function<void()> rare[] = {
      [&] { t.time(1'700'000'000 + size, size * 1'000'000); },
      [&] { t.sbrk(next.addr, 4096).mallinfo(4096, size, 4096 - size); },
      [&] { t.gap(known.addr, next.addr); },
      [&] { t.free_id(next.id, size, size); },
      [&] { t.reset_id(next.id, size, size, at); },
      [&] { t.proc_end(1 + below(last_pid)); },
      [&] {
        ++last_pid;
        t.proc(last_pid, "late").special(last_pid, 0, "main").link(last_pid, 1);
      },
      [&] { t.marker("mark " + std::to_string(size)); },
      [&] { t.query_in(0, "pbc"[below(3)], "query"); },
      [&] { t.query_out(size); },
      [&] { t.symbol(next.addr, 1, 2).symbol_alloc(next.addr, 1, size, ""); },
  };
  for (int i = 0; i < operations; ++i) {
    next = {1 + below(6), below(4), 0x1000 + i * 64};
    known = blocks[below(static_cast<std::uint32_t>(blocks.size()))];
    size = 1 + below(500);
    at = below(4);
    below(6) == 0 ? rare[below(std::size(rare))]() : frequent[below(std::size(frequent))]();
    blocks.push_back(next);
  }
}

}  // namespace kiv::test
