// Processes, the calls that they make, and their symbols.

#include <string>

#include "support/stories.h"

namespace kiv::test {
namespace {

// A process that runs, with two objects: 3 with the functions 1 and 2 and the Hosk functions 0 and
// 1, 4 with the function 1.
trace& process_with_code(trace& t) {
  t.reserve(3, "oic:orders:body").object(3).function(3, 1, "take").function(3, 2, "close");
  t.reserve(4, "oic::0:init").object(4).function(4, 1, "start");
  t.global(3, 0, "on_open").global(3, 1, "on_close");
  return t.proc(7, "server -v", 1).special(7, 0, "main").link(7, 3).link(7, 4).schedule(0, 7);
}

}  // namespace

// A process lives from its start to its end, or to the end of the measurement; the table lists
// processes by number. Memory after the end of the running process belongs to none.
void processes_start_run_and_end(trace& t) {
  process_with_code(t).start(1'700'000'000, 5'000'000).end(1'700'000'600, 250'000'000);
  t.malloc_wf(3, 0, 0x8010, 100, 112).time(1'700'000'001).proc(300'000, "far away", 7);
  t.proc(70'000, "", 300'000).special(70'000, 0, "far main").proc(8, "batch");
  t.schedule(7, 8).malloc_wf(3, 0, 0x8100, 10, 16).schedule(8, 7).flow_in(7, 0, 3, 1);
  t.malloc_nf(3, 0, 0x8200, 5, 16).time(1'700'000'002).proc_end(7).malloc_nf(3, 0, 0x8300, 6, 16);
  t.flow_in(3, 1, 4, 1).mallinfo(1, 2, 3).proc_end(70'000);
}

// A call enters an arc from caller to callee and an exit leaves it. A call that was made before
// takes the arc that it had. Exits beyond the bottom of the stack leave nothing. The bottom is
// special 0, or nothing where there is none; a caller need not be on the stack.
void calls_and_arcs(trace& t) {
  process_with_code(t).special(7, -2, "idle");
  t.flow_in(7, 0, 3, 1).flow_in(3, 1, 3, 2).malloc_wf(3, 0, 0x8010, 100, 112).flow_out();
  t.flow_in(3, 1, 3, 2).flow_in(3, 2, 4, 1).flow_in(4, 1, 3, 2).flow_out().flow_out().flow_out();
  t.malloc_wf(3, 0, 0x8100, 100, 112).flow_in(3, 1, 7, -2).flow_in(7, -2, 7, -2).flow_out();
  t.flow_out().flow_out().flow_out().flow_out().flow_in(7, 0, 3, 1).proc_end(7);
  t.proc(8, "no main").link(8, 3).schedule(7, 8).flow_in(3, 1, 3, 2).flow_out();
  t.flow_in(3, 1, 3, 2).proc_end(8);
}

// However many functions one calls, each has one arc.
void many_callees(trace& t) {
  process_with_code(t).object(5);
  for (int f = 1; f <= 14; ++f) t.function(5, f, "callee " + std::to_string(f));
  t.link(7, 5).flow_in(7, 0, 3, 1);
  for (int call = 0; call < 28; ++call) t.flow_in(3, 1, 5, 1 + call * 3 % 14).flow_out();
  t.proc_end(7);
}

// A special that takes the number of another one is called through an arc of its own; the arcs of
// the old one keep the old name.
void replaced_specials(trace& t) {
  process_with_code(t).special(7, -5, "old hook").flow_in(7, 0, 7, -5).special(7, -5, "new hook");
  t.flow_in(7, -5, 4, 1).flow_in(4, 1, 7, -5).flow_out().flow_out().flow_out();
  t.flow_in(7, 0, 7, -5).special(7, 0, "new main").flow_out().flow_in(7, 0, 7, -5).proc_end(7);
}

// A process sees an object's functions as they were announced when it first called one of them, or
// looked for one; functions announced later, or anew, are unknown to it and known to the tables.
void late_announcements(trace& t) {
  process_with_code(t).reserve(5'000, "oic:late").object(5'000).object(6'000);
  t.function(5'000, 1, "one").function(5'000, 7, "seven").function(5'000, 2, "two");
  t.link(7, 5'000).flow_in(7, 0, 5'000, 1);
  t.function(5'000, 3, "unseen").function(5'000, -1, "below").function(5'000, 2, "two anew");
  t.flow_in(5'000, 1, 5'000, 2).flow_in(5'000, 2, 5'000, 3).flow_in(5'000, 3, 4, 1).flow_out();
  t.proc(8, "batch").link(8, 5'000).link(8, 4).schedule(7, 8).flow_in(8, 0, 5'000, 2);
  t.special(8, 0, "main").flow_in(8, 0, 5'000, 2).flow_in(5'000, 2, 5'000, 3);
  t.flow_in(5'000, 3, 4, 1).proc_end(8).proc_end(7);
}

// Objects that were never loaded are all one illegal object with the number 0, which no table
// lists.
void objects_that_were_never_loaded(trace& t) {
  process_with_code(t)
      .link(7, 0)
      .link(7, 901)
      .function(901, 0, "shared")
      .function(902, 1, "shared too");
  t.flow_in(7, 0, 901, 1).flow_in(901, 1, 4, 1).flow_out().flow_in(0, 1, 4, 1).flow_out();
  t.flow_in(7, 0, 0, 1).flow_out().flow_in(7, 0, 901, 1).proc_end(7);
}

// Before any process runs, and when it ended, calls are made by the default process. It has no root
// that calls itself, and may end more than once.
void calls_outside_of_processes(trace& t) {
  t.special(0, 0, "outside").special(0, -3, "hook");
  for (int f = 4; f < 10; ++f) t.special(0, -f, "end of hook");
  for (int round = 0; round < 2; ++round) {
    t.flow_in(0, 0, 0, -4);
    for (int f = 9; f >= 4; --f) t.flow_in(0, -3, 0, -f);
    t.proc_end(0);
  }
}

// Within a Hosk call each row shows its function, symbol and arguments, however long; a call within
// it takes its place, and the exit ends both. Each process has its own.
void hosk_calls(trace& t) {
  process_with_code(t).flow_in(7, 0, 3, 1).malloc_nf(3, 0, 16, 8, 16);
  t.hosk_in(3, 1, 0, 0x602, std::string(2'050, 'h')).malloc_nf(3, 0, 32, 8, 16);
  t.hosk_in(3, 1, 1, 0x601, "a, 'b'").malloc_wf(3, 0, 48, 8, 16).sbrk(0x8000, 64).mallinfo(1, 2, 3);
  t.proc(8, "batch").schedule(7, 8).malloc_wf(3, 0, 64, 8, 16).schedule(8, 7).flow_out();
  t.free(3, 0, 48).hosk_out(3, 1, 1, "done").free(3, 0, 64).hosk_in(4, 1, 1, 1, "no such function");
  t.reset_id(3, 0, 32);
}

// A symbol gets its storage at a count of the process's entries and exits; symbols of one count are
// a group. Its declaration is made of flags, type, name and dimensions.
void symbols_by_flow(trace& t) {
  process_with_code(t).flow_in(7, 0, 3, 1).symbol(0x601, 1, 2).symbol_alloc(0x601, 1, 4, "number");
  t.symbol(0x602, 2, 1).symbol_alloc(0x602, 2, 1600, "").symbol_dims(0x602, 2, {10, 20, 0, 0});
  t.symbol(0x603, 3, 3).symbol_dd_name(0x603, "money").symbol_alloc(0x603, 0x100042, 8, "sum");
  t.symbol(0x606, 6, 2).symbol_alloc(0x606, 4, 12, "").symbol(0x607, 7, 3);
  t.symbol_alloc(0x607, 0x10121, 1, "").symbol(0x608, 8, 1).symbol_alloc(0x608, 7, 2, "");
  t.symbol_dims(0x608, 4, {1, 2, 3, 4}).flow_in(3, 1, 4, 1).symbol(0x604, 4, 4);
  t.symbol_alloc(0x604, 0x8001, 64, "").symbol(0x605, 5, 3).symbol_alloc(0x605, 0x4f24, 9, "flags");
  t.flow_out().symbol(0x609, 9, 1).proc(8, "none of its own").proc_end(7).proc_end(8);
}

}  // namespace kiv::test
