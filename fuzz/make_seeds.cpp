// make_seeds DIRECTORY: writes the first inputs of the fuzz targets.

#include <cstdio>
#include <string>
#include <utility>

#include "convert/packed_text.h"
#include "convert/recording_text.h"
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

// Recordings with what each kind of line says, sound and damaged.
bool write_recordings(const std::string& recordings) {
  const auto told = [](int format) {
    test::recording r(format);
    const auto main = r.call("/usr/bin/app", {{"main", "app.c", 3}});
    const auto inlined = r.call("/usr/bin/app", {{"grow", "vec.h", 7}, {"fill"}}, main);
    const auto create = r.call("/usr/lib/cpp.so", {{"operator new(unsigned long)"}}, inlined);
    const auto again = r.call("/opt/lib/cpp.so", {}, create);
    const auto equal = r.allocation(24, create), other = r.allocation(100'000, again);
    r.time(0).resident(7).make(equal, 0x10).make(other, 0x20).time(5).make(equal, 0x30);
    return r.end(equal, 0x10).end(other, 0x20).resident(9);
  };
  test::recording large = told(3), damaged = told(3);
  const auto bytes = large.allocation(std::uint64_t{9} << 30, 1);
  large.make(bytes).make(bytes).end(bytes);
  damaged.line("+ 9").line("- 1").line("i 1 77").line("t 7 9").line("a zz").line("s 9 x");
  const std::string text = told(3).text();
  std::string two_lines = text;
  two_lines.insert(two_lines.find("--fast") + 6, "\n+ 0\nI 7");
  const struct {
    const char* name;
    std::string bytes;
  } inputs[] = {
      {"format_1", told(1).text()},
      {"format_2", told(2).text()},
      {"format_3", text},
      {"with_raw", text + "=raw=\n" + told(3).raw_text()},
      {"other_raw", text + "=raw=\n" + large.raw_text()},
      {"large", large.text()},
      {"damaged", damaged.cut()},
      {"command_of_lines", two_lines},
      {"zstd", test::zstd_of(text)},
      {"gzip", test::gzip_of(text)},
  };
  bool written = true;
  for (const auto& input : inputs)
    written &= test::write_file(recordings + input.name, input.bytes);
  return written;
}

bool write_all(const std::string& directory) {
  const std::string traces = directory + "/trace_fuzz/";
  const std::string headers = directory + "/header_fuzz/";
  bool written = write_recordings(directory + "/recording_fuzz/");
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
