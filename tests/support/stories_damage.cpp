// What a broken writer or a lost beginning leaves.

#include <string>

#include "support/stories.h"

namespace kiv::test {
namespace {

trace& main_runs(trace& t) { return t.proc(9, "main").special(9, 0, "main").schedule(0, 9); }

}  // namespace

// What was never announced belongs to the id for unknown numbers and to the default process.
void nothing_announced(trace& t) {
  t.malloc_wf(5, 1, 0x100, 10, 16, 0x999).free(5, 1, 0x100).free(5, 1, 0x100).color(0, "nobody's");
  t.flow_out().flow_in(1, 1, 2, 2).query_out(5).hosk_in(1, 1, 1, 1, "").symbol_alloc(1, 1, 1, "x");
  t.malloc_nf(6, 7, 0x200, 20, 32).schedule(77, 78).proc_end(79).free_id(6, 0, 32);
  t.reset_id(6, 1, 2).query_in(0, 'z').query_out(1).malloc_wf(6, 0, 0x300, 5, 16);
}

// A number that is taken already stays with the first id, object, source line, symbol or query; a
// process begins anew.
void announced_twice(trace& t) {
  main_runs(t).reserve(3, "oic:first", 2).color(1, "one").reserve(3, "oic:again").color(0, "late");
  t.malloc_wf(3, 0, 0x100, 10, 16).proc(9, "again").malloc_wf(3, 0, 0x200, 20, 32);
  t.object(3).function(3, 1, "old").object(3).function(3, 2, "new");
  t.hashloc(0x501, "a.c:1").hashloc(0x501, "b.c:2");
  t.symbol(1, 1, 1).symbol(1, 2, 2).symbol_alloc(1, 1, 8, "");
  t.query_in(0, 'p', "one").query_out(1).query_in(0, 'p', "two").query_out(1).query_in(0, 'b');
  t.proc_end(9);
}

// Colours, processes, objects and functions that are not there. A function is looked for among as
// many numbers as its object has functions: one that none of these has is a call of nothing, and a
// higher number, announced or not, is no call.
void numbers_of_nothing(trace& t) {
  main_runs(t).reserve(3, "oic:x", 2).color(2, "beyond").reserve(4, "proc:55:nobody");
  t.reserve(5, "xml").malloc_wf(3, 7, 0x400, 40, 48).object(3).object(5).function(3, 5, "sparse");
  t.function(33, 1, "nowhere").link(9, 33).link(9, 3).flow_in(9, 0, 3, 5).flow_in(9, 0, 3, -3);
  t.flow_in(9, 0, 3, 1).flow_in(3, 1, 33, 1).flow_out().flow_out().flow_out().flow_in(9, 0, 9, 0);
  t.flow_in(9, 0, 3, 99).hosk_in(3, 1, -1, 1, "").symbol_dims(8, 1, {}).symbol_dd_name(8, "x");
  t.proc_end(9).schedule(9, 10).malloc_nf(3, 0, 0x500, 4, 16).link(10, 3).proc_end(10);
}

// An address that is live is refused, and counts all the same; one that is not live cannot be freed
// or resized, and its row shows the books unchanged.
void illegal_addresses(trace& t) {
  main_runs(t).hashloc(0x501, "a.c:1").reserve(3, "oic:x", 2);
  t.malloc_wf(3, 0, 0x200, 10, 16, 0x501).malloc_wf(3, 1, 0x200, 20, 32, 0x501);
  t.malloc_wf(3, 1, 0x300, 30, 48, 0x501, 0x999);
  t.malloc_nf(3, 1, 0x500, 50, 64).malloc_nf(3, 1, 0x500, 60, 64);
  t.realloc(3, 1, 0x999, 1, 1).realloc(3, 1, 0x300, 40, 32).realloc(3, 1, 0x300, 40, 64);
  t.free(3, 0, 0x300).free(3, 0, 0x300).free(3, 0, -1).free(3, 1, 0x500).realloc(3, 1, 0x500, 9, 9);
}

// When the totals that a freed or reset id tells differ from those of the books, the books are
// listed: live sizes by kind, sizes of the blocks by colour (>>), books of the colours (c>).
void totals_that_differ(trace& t) {
  main_runs(t).reserve(3, "oic:x", 2).color(1, "one").malloc_wf(3, 0, 0x200, 10, 16);
  t.malloc_wf(3, 1, 0x300, 20, 32)
      .malloc_nf(3, 1, 0x500, 50, 64)
      .reset_id(3, 1, 2)
      .malloc_wf(3, 1, 0x800, 8, 16);
  t.malloc_nf(3, 0, 0x500, 9, 16).free_id(3, 16, 2).malloc_wf(3, 0, 0x900, 1, 16).free_id(3);
  t.free_id(3);
}

// Sizes, times and kinds that cannot be are taken as they are, modulo the width of their column.
void impossible_values(trace& t) {
  main_runs(t).reserve(3, "oic:x", 2).reserve(7, "", 4'000'000'000);
  t.malloc_wf(7, 0, 0x600, 70, 80).malloc_wf(3, 0, 0x700, 3'000'000'000, 0).free(3, 0, 0x700);
  t.gap(0x9800, 0x9000).sbrk(0x1000, 4'294'967'295U).mallinfo(4'294'967'295U, 0, 1);
  t.symbol(2, -1, 1).symbol_alloc(2, 1, 1, "").symbol(3, 3, 9).symbol_alloc(3, 1, 1, "");
  t.flow_in(9, 0, 9, 0).symbol_alloc(3, 1, 1, "").symbol_dims(3, 5, {1, 2, 3, 4});
  t.time(4'000'000'000, 4'000'000'000).malloc_wf(3, 1, 0x900, 9, 16).proc_end(9);
}

// A record whose fields end elsewhere than its size says is booked, and the next one is looked for
// where the size says: behind bytes of no meaning, or within its own fields. A record of an unknown
// type ends the replay.
void records_out_of_sync(trace& t) {
  t.marker("in step").bad_size(12).schedule(9, 9).raw("\x09\x09\x09\x09").marker("behind");
  t.bad_size(5).schedule(9, 'O' << 8).marker("within").raw(std::string(3, '\0'));
  t.marker("unseen").next_file().marker("unseen, too");
}

}  // namespace kiv::test
