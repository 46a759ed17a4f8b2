// make_seeds DIRECTORY: writes the first inputs of both fuzz targets.

#include <cstdio>
#include <string>
#include <utility>

#include "support/stories.h"
#include "support/trace_builder.h"
#include "trace_input.h"

namespace kiv::fuzz {
namespace {

using test::trace;

// The input that replays the records of a trace.
std::string input_of(trace told, const trace_input& form = {}) {
  return form.prelude() + told.data();
}

trace as_told_in(const trace_input& form) {
  trace t;
  if (form.big_endian) t.big_endian();
  t.addr_width(form.address_width);
  return t.width('R', "nr_colors", 1);
}

// One record of the type, behind what it refers to.
trace record_of(char tag) {
  trace t = as_told_in({});
  t.proc(7, "app").schedule(0, 7).reserve(1, "oic:x", 2).malloc_wf(1, 0, 16, 8, 8);
  return t.record(tag);
}

bool write_all(const std::string& directory) {
  const std::string traces = directory + "/trace_fuzz/";
  const std::string headers = directory + "/header_fuzz/";
  bool written = true;
  for (const char tag : test::all_tags()) {
    written &= test::write_file(traces + "record_" + tag, input_of(record_of(tag)));
  }

  trace_input wide;
  wide.big_endian = wide.listed = true;
  wide.address_width = 8;
  trace_input cut;
  cut.two_files = cut.small_files = true;
  const auto write_story = [&](const test::story& told, const trace_input& form) {
    trace t = as_told_in(form);
    told.tell(t);
    written &= test::write_file(traces + std::string(told.name), input_of(t, form));
  };
  bool next_is_wide = false;
  for (const test::story& one : test::clean_stories())
    write_story(one, std::exchange(next_is_wide, !next_is_wide) ? wide : cut);
  for (const test::story& one : test::damaged_stories()) write_story(one, {});
  write_story({"random", [](trace& t) { test::random_operations(t, 7, 60); }}, wide);

  trace running;
  running.unclosed().big_endian().without_entry('a').recorded_size(0, "99999999999");
  const struct {
    const char* name;
    std::string bytes;
  } texts[] = {
      {"whole", trace().header(".")},
      {"unclosed", running.header("./x")},
      {"nested",
       "<kiv><entry tag='a'><entry/><elem n='x' s='-1'/></entry><kivfile><kiv/></kivfile></kiv>"},
  };
  for (const auto& text : texts) written &= test::write_file(headers + text.name, text.bytes);
  return written;
}

}  // namespace
}  // namespace kiv::fuzz

int main(int argc, char** argv) {
  if (argc == 2 && kiv::fuzz::write_all(argv[1])) return 0;
  std::fputs("make_seeds: cannot write the inputs\n", stderr);
  return 1;
}
