// Blocks, allocation ids and the heap.

#include "support/stories.h"

namespace kiv::test {
namespace {

constexpr std::int64_t made = 0x501, ended = 0x502, reserved = 0x503;

trace& server_runs(trace& t) { return t.proc(7, "server").special(7, 0, "main").schedule(0, 7); }

}  // namespace

// A with-free block is live until it is freed, a no-free block until its id goes. The two kinds
// have books of their own, so that one address may be in both; a freed address may come again.
void blocks_with_and_without_free(trace& t) {
  server_runs(t).reserve(3, "oic:orders", 2).color(0, "red").color(1, "green");
  t.malloc_wf(3, 0, 0x8010, 100, 112, made).malloc_wf(3, 1, 0x8080, 50, 64, made);
  t.malloc_nf(3, 1, 0x80c0, 20, 32, made).malloc_nf(3, 0, 0x8100, 9, 16, made);
  t.malloc_wf(3, 1, 0x80c0, 7, 24, made).free(3, 1, 0x80c0, ended).free(3, 0, 0x8010, ended);
  t.malloc_wf(3, 0, 0x8010, 40, 48, made);
}

// A resize in place ends the block and makes it anew, larger or smaller; its free names the resize.
// A block that takes the place of another one names that one's record and does not end it.
void resized_blocks(trace& t) {
  server_runs(t).reserve(3, "oic:orders", 2).color(0, "red").color(1, "green");
  t.malloc_wf(3, 0, 0x8010, 100, 112, made).malloc_wf(3, 1, 0x8080, 50, 64, made);
  t.realloc(3, 0, 0x8010, 150, 160, ended, 0x8010).realloc(3, 1, 0x8080, 30, 48, ended);
  t.realloc(3, 1, 0x8080, 30, 48, ended);
  t.malloc_wf(3, 0, 0x8200, 200, 208, made, 0x8010).free(3, 0, 0x8010, ended);
  t.free(3, 1, 0x8080, ended);
}

// A process has its own totals, also by id and by colour. One that frees another one's
// block, or an id with such blocks, goes below zero. A colour without a name has no total of its
// own.
void blocks_of_several_processes(trace& t) {
  server_runs(t).reserve(3, "oic:orders", 2).color(0, "red").color(1, "green").reserve(4, "cache");
  t.malloc_wf(3, 0, 0x8010, 100, 112).malloc_wf(3, 1, 0x8080, 50, 64);
  t.malloc_wf(4, 0, 0x8200, 5, 16).proc(8, "batch", 7).schedule(7, 8);
  t.malloc_wf(3, 0, 0x8100, 30, 32).free(3, 1, 0x8080).malloc_nf(4, 0, 0x8300, 20, 32);
  t.free_id(3, 144).schedule(8, 7).malloc_wf(4, 0, 0x8400, 6, 16).schedule(7, 0);
  t.malloc_wf(4, 0, 0x8500, 7, 16).free(4, 0, 0x8200);
}

// A reset gives back what an id holds, and the id goes on; so does a free, with which its lifetime
// ends. The row shows the id's books as they were. A colour without a name is a bad one.
void freed_and_reset_ids(trace& t) {
  server_runs(t).time(1'700'000'000).hashloc(reserved, "ids.c:56");
  t.reserve(3, "oic:orders:body", 3, reserved, 4096).color(0, "red").color(2, "green");
  t.reserve(20, "cache").color(0, "node").color(0, "node again");
  t.malloc_wf(3, 0, 0x8010, 100, 112)
      .malloc_wf(3, 2, 0x8080, 50, 64)
      .malloc_nf(3, 2, 0x80c0, 9, 16);
  t.malloc_nf(20, 0, 0x8400, 300, 304).malloc_wf(20, 0, 0x8600, 5, 16);
  t.time(1'700'000'001).reset_id(20, 16, 304, reserved);
  t.malloc_wf(20, 0, 0x8600, 6, 24).malloc_nf(20, 0, 0x8400, 1, 16);
  t.time(1'700'000'002).free_id(20, 24, 16, reserved).free_id(3, 176, 16, reserved);
  t.time(1'700'000'003).malloc_wf(3, 0, 0x8010, 3, 16);
}

// The beginning of a reservation's text tells the category, which tells what the rest describes and
// refers to. Ids of proc and of XML go to their process; a process that ends keeps its.
void reservation_texts(trace& t) {
  server_runs(t).proc(8, "batch", 7);
  const char* texts[] = {
      "oic:orders:body",
      "oic::0:init",
      "oic",
      "proc:7:server -v",
      "proc:8",
      "proc",
      "xml_tree:7:list",
      "xml_list:8",
      "xml",
      "dlock:stock:write",
      "dlock:stock",
      "dlock",
      "qdb:orders",
      "make_new_sql_stmt:sel",
      "dbs_session:77",
      "cache",
      "oi",
      "",
      "process",
  };
  std::uint32_t id = 11;
  for (const char* text : texts) t.reserve(id++, text);
  t.reserve(id, "oic:" + std::string(310, 'd') + ":" + std::string(210, 'r'));
}

// Ids and colours may have any number, in any order; tables list ids in ascending order.
void far_ids_and_colors(trace& t) {
  server_runs(t);
  for (const std::uint32_t id : {900'000U, 5'000U, 77'777U, 4'097U, 123'456U})
    t.reserve(id, "oic:far", 100).color(99, "late").color(70, "violet").object(id);
  t.malloc_wf(123'456, 99, 0x8650, 7, 16).malloc_wf(123'456, 70, 0x8660, 8, 16);
  t.malloc_nf(77'777, 99, 0x8690, 4, 16).reset_id(123'456, 32);
  t.malloc_wf(123'456, 99, 0x8670, 9, 16).malloc_wf(123'456, 70, 0x8680, 1, 16);
}

// The heap grows in pieces; a gap is what lies between the end of one and the start of the next.
// Both are summed up, and each memory row shows the sums. The arena's figures stand for themselves.
void heap_gaps_and_arena(trace& t) {
  server_runs(t).reserve(3, "oic:orders").time(1'700'000'001, 999'999'999);
  t.sbrk(0x8000, 4096).gap(0x9000, 0x9800).malloc_wf(3, 0, 0x8010, 100, 112).sbrk(0x9800, 8192);
  t.mallinfo(12288, 700, 11588).schedule(7, 0).gap(0xb800, 0xb900).malloc_wf(3, 0, 0x8100, 1, 16);
  t.mallinfo(12800, 800, 12000);
}

}  // namespace kiv::test
