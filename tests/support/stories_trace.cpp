// The run as a whole: its header, time, markers, SQL operations.

#include <string>

#include "support/stories.h"

namespace kiv::test {

// The header tells the run's facts, hashloc records its source lines.
void run_and_source_lines(trace& t) {
  t.pid(7).runid("R42").progname("orderd").start(1'700'000'000, 5'000'000);
  t.end(1'700'000'600, 250'000'000).attr("user", "ann").attr("pacc", "ops");
  t.attr("hostname", "mill").attr("lom", "hp-ux").attr("m_entry", "17").attr("mem_block", "33");
  t.attr("m_group", "65").hashloc(0x502, "free.c:34").hashloc(0x501, "alloc.c:12");
  t.hashloc(0x7fffff03, "libc+0x3");
}

// Events are as old as the last time stamp, at first the start of the measurement. Markers are
// numbered, name the memory records before them, and are cut at 255 bytes.
void times_and_markers(trace& t) {
  t.start(1'700'000'000, 5'000'000).end(1'700'000'600, 250'000'000).reserve(3, "oic:orders");
  t.marker("early").time(1'700'000'001, 999'999'999).malloc_wf(3, 0, 16, 8, 16).marker("half way");
  t.time(1'700'000'002, 1'000'000).malloc_wf(3, 0, 32, 8, 16).free(3, 0, 16).marker("");
  t.time(1'700'000'001).malloc_wf(3, 0, 48, 8, 16).marker(std::string(300, 'm'));
}

// An operation is open from its entry to its exit, which tells the query. What happens meanwhile
// carries its number and is counted; when there was nothing, both counts are 0. A query is kept
// when it is prepared, and notes when it was used.
void sql_brackets(trace& t) {
  t.start(1'700'000'000).end(1'700'000'600).reserve(15, "qdb:orders").proc(7, "server");
  t.special(7, 0, "main").schedule(0, 7).malloc_wf(15, 0, 0x8200, 1, 16);
  t.query_in(0, 'p', "select a;b from c").malloc_wf(15, 0, 0x8300, 11, 16).query_out(900);
  t.time(1'700'000'002, 1'000'000).query_in(0, 'b').query_out(900).time(1'700'000'003);
  t.query_in(0, 'c').free(15, 0, 0x8300).sbrk(0xb800, 512).query_out(900, 0);
  t.query_in(0, 'p', "update\nd").query_out(901, 900).time(1'700'000'004);
  t.query_in(0, 'f').mallinfo(1, 2, 3).query_out(901, 900);
  t.query_in(0, 'e').query_out(900).query_in(0, 's').query_out(902);
  t.malloc_wf(15, 0, 0x8400, 2, 16).query_in(0, 'p', "").query_out(70'000).query_in(0, 'b');
}

// A record of each type.
void every_record_type_once(trace& t) {
  t.hashloc(0x501, "alloc.c:12").reserve(3, "oic:orders", 2, 0x501, 4096).color(1, "green");
  t.object(3).function(3, 1, "take").global(3, 0, "on_open").proc(7, "server -v", 1);
  t.special(7, 0, "main").link(7, 3).schedule(0, 7).time(1'700'000'001, 999'999'999);
  t.sbrk(0x8000, 4096).gap(0x9000, 0x9800).mallinfo(12288, 700, 11588).flow_in(7, 0, 3, 1);
  t.hosk_in(3, 1, 0, 0x601, "a, 'b'").malloc_wf(3, 1, 0x8010, 100, 112, 0x501, 0x7000);
  t.malloc_nf(3, 0, 0x8080, 50, 64, 0x501).realloc(3, 1, 0x8010, 150, 160, 0x501, 0x8010);
  t.free(3, 1, 0x8010, 0x501).symbol(0x601, 1, 2).symbol_dims(0x601, 2, {10, 20, 0, 0});
  t.symbol_dd_name(0x601, "money").symbol_alloc(0x601, 0x4042, 4, "sum").hosk_out(3, 1, 0, "done");
  t.flow_out().query_in(5, 'p', "select").query_out(900, 901).marker("half way");
  t.reset_id(3, 0, 64, 0x501).free_id(3, 0, 0, 0x501).proc_end(7);
}

}  // namespace kiv::test
