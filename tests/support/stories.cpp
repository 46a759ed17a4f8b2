#include "support/stories.h"

#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace kiv::test {

void every_record(trace& t) {
  t.pid(7).runid("R42").progname("orderd").start(1'700'000'000, 5'000'000);
  t.end(1'700'000'600, 250'000'000)
      .attr("user", "ann")
      .attr("pacc", "ops")
      .attr("hostname", "mill");
  t.hashloc(0x501, "alloc.c:12").hashloc(0x502, "free.c:34").hashloc(0x503, "ids.c:56");

  t.proc(7, "server -v", 1).special(7, 0, "main").special(7, -2, "idle").schedule(0, 7);
  t.reserve(3, "oic:orders:body", 2, 0x503, 4096).color(0, "red").color(1, "green");
  t.reserve(4, "oic::0:init")
      .color(0, "only")
      .reserve(12, "proc:7:server", 3, 0x503)
      .color(2, "c2");
  t.reserve(13, "xml_tree:7:list").reserve(14, "dlock:stock:write").reserve(15, "qdb:orders");
  t.reserve(16, "make_new_sql_stmt:sel").reserve(17, "dbs_session:77").reserve(18, "cache");
  t.object(3).function(3, 1, "take").function(3, 2, "close").object(4).function(4, 1, "start");
  t.global(3, 0, "on_open").global(3, 1, "on_close").link(7, 3).link(7, 4);
  t.time(1'700'000'001, 999'999'999);

  t.sbrk(0x8000, 4096).gap(0x9000, 0x9800).sbrk(0x9800, 8192).mallinfo(12288, 700, 11588);
  t.flow_in(7, 0, 3, 1).malloc_wf(3, 0, 0x8010, 100, 112, 0x501).flow_in(3, 1, 3, 2);
  t.malloc_wf(3, 1, 0x8080, 50, 64, 0x501).malloc_nf(3, 1, 0x80c0, 20, 32, 0x501);
  t.hosk_in(3, 1, 0, 0x602, std::string(3'000, 'h'));  // no row's buffer holds that
  t.malloc_wf(12, 2, 0x80c0, 7, 16, 0x501).free(12, 2, 0x80c0, 0x502);
  t.hosk_in(3, 1, 1, 0x601, "a, 'b'").malloc_wf(12, 2, 0x8100, 7, 16, 0x501);
  t.realloc(3, 0, 0x8010, 150, 160, 0x502, 0x8010).realloc(3, 1, 0x8080, 30, 48, 0x502);
  t.malloc_wf(3, 0, 0x8200, 200, 208, 0x501, 0x8010).free(3, 0, 0x8010, 0x502);
  t.hosk_out(3, 1, 1, "done").flow_out().flow_in(3, 1, 3, 2).flow_out();
  t.marker("half way");

  t.symbol(0x601, 1, 2).symbol_alloc(0x601, 1, 4, "number").symbol(0x602, 2, 1);
  t.symbol_alloc(0x602, 2, 1600, "").symbol_dims(0x602, 2, {10, 20, 0, 0});
  t.symbol(0x603, 3, 3).symbol_dd_name(0x603, "money").symbol_alloc(0x603, 0x100042, 8, "sum");
  t.symbol(0x604, 4, 4).flow_in(3, 1, 4, 1).symbol_alloc(0x604, 0x8001, 64, "");
  t.symbol(0x605, 5, 3).symbol_alloc(0x605, 0x4f24, 9, "flags").flow_out();

  t.query_in(0, 'p', "select a;b from c").malloc_wf(15, 0, 0x8300, 11, 16, 0x501).query_out(900);
  t.time(1'700'000'002, 1'000'000).query_in(0, 'b').query_out(900);
  t.query_in(0, 'c').free(15, 0, 0x8300, 0x502).sbrk(0xb800, 512).query_out(900, 0);
  t.query_in(0, 'p', "update\nd").query_out(901, 900).query_in(0, 'f').query_out(901, 900);
  t.query_in(0, 'e').query_out(900).query_in(0, 's').query_out(902);

  t.proc(8, "batch", 7).special(8, 0, "batch main").link(8, 4).schedule(7, 8);
  t.reserve(20, "xml_tree:8:list").color(0, "node").flow_in(8, 0, 4, 1);
  t.malloc_nf(20, 0, 0x8400, 300, 304, 0x501).malloc_wf(12, 2, 0x8540, 8, 16, 0x501);
  t.free(12, 2, 0x8100, 0x502)
      .malloc_wf(20, 0, 0x8600, 5, 16, 0x501)
      .malloc_nf(18, 0, 0x8700, 1, 16);
  t.reset_id(20, 16, 304, 0x503).malloc_wf(20, 0, 0x8600, 6, 16, 0x501);
  t.time(1'700'000'003).free_id(20, 16, 0, 0x503).free_id(3, 208 + 48, 32, 0x503);

  // Numbers that few traces have, out of order, and functions announced after a link looked.
  for (const std::uint32_t id : {900'000U, 5'000U, 77'777U, 4'097U, 123'456U})
    t.reserve(id, "oic:far", 100).color(99, "late").color(70, "violet").object(id);
  t.malloc_wf(123'456, 99, 0x8650, 7, 16).malloc_wf(123'456, 70, 0x8660, 8, 16);
  t.reset_id(123'456, 32)
      .malloc_wf(123'456, 99, 0x8670, 9, 16)
      .malloc_wf(123'456, 70, 0x8680, 1, 16);
  t.function(5'000, 1, "one").function(5'000, 2, "two").function(5'000, 7, "seven").link(8, 5'000);
  t.flow_in(4, 1, 5'000, 1).function(5'000, 2, "two anew").function(5'000, 3, "unseen");
  t.flow_in(5'000, 1, 5'000, 2).flow_in(5'000, 2, 5'000, 3);

  // One function calls many others, each twice. Processes with far numbers, out of order.
  for (int f = 1; f <= 16; ++f) t.function(77'777, f, "callee " + std::to_string(f));
  t.link(8, 77'777);
  for (int call = 0; call < 32; ++call) t.flow_in(5'000, 2, 77'777, 1 + call * 3 % 16).flow_out();
  // Specials replaced while the call graph holds them; objects that were never loaded share one.
  t.special(8, -5, "old hook").flow_in(5'000, 1, 8, -5).special(8, -5, "new hook");
  t.flow_in(8, -5, 4, 1).flow_in(5'000, 1, 8, -5).flow_out().flow_out().flow_out();
  t.link(8, 0).link(8, 901).function(901, 0, "shared").function(901, 1, "shared too");
  t.flow_in(5'000, 1, 901, 1).flow_in(901, 1, 4, 1).flow_out().flow_in(0, 1, 4, 1).flow_out();
  t.flow_in(5'000, 1, 0, 1).flow_out().flow_out();
  t.proc(300'000, "far", 8).proc(70'000, "less far", 8).special(70'000, 0, "far main");

  t.schedule(8, 7)
      .flow_out()
      .malloc_nf(14, 0, 0x8780, 2, 16)
      .proc_end(7)
      .malloc_nf(14, 0, 0x8790, 3, 16)
      .flow_in(3, 1, 4, 1)
      .mallinfo(12800, 800, 12000)
      .proc_end(8);
  t.malloc_wf(12, 2, 0x8800, 9, 16, 0x501).special(0, 0, "outside").special(0, -3, "hook");
  for (int f = 4; f < 20; ++f) t.special(0, -f, "end of hook");
  for (int round = 0; round < 2; ++round) {
    t.flow_in(0, 0, 0, -4);
    for (int f = 19; f >= 4; --f) t.flow_in(0, -3, 0, -f);
    t.proc_end(0);
  }
  t.marker(std::string(300, 'm'));
}

void damaged(trace& t) {
  t.pid(9).runid("BAD").start(1'700'000'000);
  // Before anything was announced.
  t.malloc_wf(5, 1, 0x100, 10, 16, 0x999).free(5, 1, 0x100).free(5, 1, 0x100).color(0, "nobody's");
  t.flow_out().flow_in(1, 1, 2, 2).query_out(5).hosk_in(1, 1, 1, 1, "").symbol_alloc(1, 1, 1, "x");
  t.schedule(77, 78).proc_end(79).free_id(6).reset_id(6, 1, 2).query_in(0, 'z').query_out(1);

  t.proc(9, "main").special(9, 0, "main").schedule(0, 9).proc(9, "again").proc(10, "short");
  t.reserve(3, "oic:x", 2).color(1, "one").color(2, "beyond").reserve(3, "oic:again");
  t.reserve(4, "proc:55:nobody").reserve(5, "oi").reserve(6, "xml").reserve(7, "", 4'000'000'000);
  t.object(3).object(3).object(5).function(3, 5, "sparse").function(33, 1, "nowhere").link(9, 33);
  t.link(9, 3).hashloc(0x501, "a.c:1").hashloc(0x501, "b.c:2").flow_in(9, 0, 3, 5);
  t.flow_in(9, 0, 3, -3).flow_in(9, 0, 3, 1).flow_in(3, 1, 33, 1).flow_out().flow_out().flow_out();

  t.malloc_wf(3, 0, 0x200, 10, 16, 0x501).malloc_wf(3, 1, 0x200, 20, 32, 0x501);
  t.malloc_wf(3, 1, 0x300, 30, 48, 0x501, 0x999).malloc_wf(3, 7, 0x400, 40, 48);
  t.malloc_nf(3, 1, 0x500, 50, 64).malloc_nf(3, 1, 0x500, 60, 64).malloc_wf(7, 0, 0x600, 70, 80);
  t.realloc(3, 1, 0x999, 1, 1).realloc(3, 1, 0x300, 40, 32).realloc(3, 1, 0x300, 40, 64);
  t.free(3, 0, 0x300).free(3, 0, -1).gap(0x9800, 0x9000).malloc_wf(3, 0, 0x700, 3'000'000'000, 0);
  t.free(3, 0, 0x700).reset_id(3, 1, 2).malloc_wf(3, 1, 0x800, 8, 16).free_id(3, 1, 2).free_id(3);

  t.symbol(1, 1, 1).symbol(1, 2, 2).symbol(2, -1, 1).symbol_alloc(2, 1, 1, "").symbol(3, 3, 9);
  t.flow_in(9, 0, 9, 0)
      .symbol_alloc(3, 1, 1, "")
      .symbol_dims(3, 5, {1, 2, 3, 4})
      .symbol_dims(9, 1, {});
  t.query_in(0, 'p', "one").query_out(1).query_in(0, 'p', "two").query_out(1).query_in(0, 'b');

  t.bad_size(3)
      .schedule(9, 9)
      .bad_size(12)
      .schedule(9, 9)
      .raw("\x09\0\0\0")
      .marker("in step again");
  t.record('X', 10, 0, 0)
      .time(4'000'000'000, 4'000'000'000)
      .proc_end(10)
      .malloc_wf(3, 1, 0x900, 9, 16);
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
