// make_page_traces DIRECTORY: writes the runs that the tests of the page open, besides the samples.
//   HOSTILE  names that would be markup, code or a puzzle if anything took them for more than text
//   SEVERAL  two traces of one run
//   LOST     a trace that is not complete
//   LARGE    many thousand frames

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>

#include "support/trace_builder.h"

namespace {

using kiv::test::trace;
using u32 = std::uint32_t;
using i64 = std::int64_t;

constexpr i64 first_line = 0x5a17'0000'0000, first_block = 0x5581'4c00'0000;
constexpr u32 process = 7, start_of_all = 1'700'000'000;

trace new_trace(const char* run, const char* program, u32 pid = process) {
  trace t;
  t.runid(run).progname(program).pid(pid).addr_width(8).attr("hostname", "mill");
  t.start(start_of_all).end(start_of_all + 2);
  t.proc(pid, program).special(pid, 0, "main").schedule(0, pid);
  return t;
}

const std::string hostile_names[] = {
    "</script><script>alert(1)</script>",
    "<img src=x onerror=alert(1)>",
    "<!--<script>",
    "\"quoted\" 'names' & &lt;entities&gt;",
    "line\xe2\x80\xa8separator\xe2\x80\xa9 and \xe2\x80\xaeturned\xe2\x80\xac",
    "no-UTF-8\xff\xfe\xc3",
    "@DATA@ @TITLE@ @SCRIPT@ ${x} {{x}}",
    "__proto__",
    "javascript:alert(1)//" + std::string(1500, 'x') + "the end",
};

trace hostile() {
  trace t = new_trace("<b>run</b> & \"co\"", "<u>program</u>");
  t.attr("hostname", "<i>host</i>");
  constexpr u32 first_id = 10;
  i64 block = first_block;
  for (u32 n = 0; n < std::size(hostile_names); ++n) {
    const std::string& name = hostile_names[n];
    const u32 id = first_id + n;
    t.hashloc(first_line + n, name).reserve(id, "oic:" + name, 2).color(0, name).color(1, "b");
    t.object(id).function(id, 1, name);
  }
  u32 running = process;
  for (u32 n = 0; n < std::size(hostile_names); ++n) {
    const u32 id = first_id + n;
    t.time(start_of_all, (n + 1) * 100'000'000).marker(hostile_names[n]);
    const u32 next = process + 1 + n;
    t.proc(next, hostile_names[n]).special(next, 0, hostile_names[n]).link(next, id);
    t.schedule(running, next).query_in(n + 1, 'p', "select " + hostile_names[n]);
    running = next;
    t.flow_in(next, 0, id, 1).malloc_wf(id, 0, block, 100 + n, 112 + n, first_line + n);
    t.malloc_nf(id, 1, block + 4096, 50, 64, first_line + n).flow_out().query_out(n + 1, n + 1);
    block += 8192;
  }
  return t;
}

// A process that takes `count` blocks, gives every other one back and ends after so many seconds.
trace taking(const char* program, u32 pid, u32 count, u32 size, u32 seconds) {
  trace t = new_trace("SEVERAL", program, pid);
  t.end(start_of_all + seconds);
  t.reserve(3, "oic:shared").reserve(pid, std::string("oic:") + program);
  t.hashloc(first_line + pid, std::string(program) + ".c:10");
  for (u32 n = 0; n < count; ++n) {
    const i64 block = first_block + i64{0x1000} * n;
    t.time(start_of_all, (n * 7 + pid) * 1'000'000).sbrk(block, 4096);
    t.malloc_wf(n % 3 == 0 ? 3 : pid, 0, block, size + n, size + n + 8, first_line + pid);
    if (n % 2 == 1) t.free(n % 3 == 0 ? 3 : pid, 0, block, first_line + pid);
  }
  return t;
}

// Blocks are freed that nobody made, and the process still runs.
trace lost() {
  trace t = new_trace("LOST", "loser");
  t.reserve(3, "oic:lost").malloc_wf(3, 0, first_block, 10, 16).free(3, 0, first_block + 64);
  return t.unclosed();
}

// Calls that fan out: each function of a level calls each of the next.
trace large() {
  trace t = new_trace("LARGE", "large");
  constexpr u32 object = 3, width = 22;
  t.reserve(object, "oic:code").object(object).link(process, object);
  for (u32 n = 0; n < 3 * width; ++n) {
    t.function(object, static_cast<int>(n + 1), "function_" + std::to_string(n + 1));
  }
  const auto callee = [](u32 level, u32 n) { return static_cast<int>(level * width + n + 1); };
  i64 block = first_block;
  for (u32 a = 0; a < width; ++a) {
    t.flow_in(process, 0, object, callee(0, a));
    for (u32 b = 0; b < width; ++b) {
      t.flow_in(object, callee(0, a), object, callee(1, b));
      for (u32 c = 0; c < width; ++c) {
        t.flow_in(object, callee(1, b), object, callee(2, c));
        t.malloc_wf(object, 0, block, 16 + (a * 31 + b * 17 + c * 7) % 200, 240, first_line + c);
        t.flow_out();
        block += 256;
      }
      t.flow_out();
    }
    t.flow_out();
  }
  return t;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("make_page_traces: call it with a directory\n", stderr);
    return EXIT_FAILURE;
  }
  const std::string to = std::string(argv[1]) + '/';
  const bool written = hostile().write(to + "HOSTILE") &&
                       taking("first", 101, 60, 1000, 2).write(to + "SEVERAL") &&
                       taking("second", 102, 40, 300, 1).base_name("other").write(to + "SEVERAL") &&
                       lost().write(to + "LOST") && large().write(to + "LARGE");
  if (!written) std::fputs("make_page_traces: cannot write there\n", stderr);
  return written ? EXIT_SUCCESS : EXIT_FAILURE;
}
