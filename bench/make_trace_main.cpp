#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "make_trace.h"

namespace {

// The whole text as a number; false when it is none.
bool read_number(std::string_view text, std::uint32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

int usage() {
  std::fputs(
      "usage: make_trace KIND RECORDS DIR [BLOCKS]\n"
      "  memory   allocations, frees and reallocations of 20 processes\n"
      "  flow     nine in ten records enter or leave a function\n"
      "  type-T   records of the type with the tag T\n"
      "  base-T   the same trace without those records\n"
      "BLOCKS: live blocks of each id that type-F or type-Z gives back (0)\n",
      stderr);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kiv;
  std::uint32_t records = 0;
  std::uint32_t blocks = 0;
  if (argc < 4 || argc > 5 || !read_number(argv[2], records)) return usage();
  if (argc == 5 && !read_number(argv[4], blocks)) return usage();

  const std::string_view kind = argv[1];
  const bool all = kind.starts_with("type-");
  test::trace made;
  if (kind == "memory") {
    made = bench::memory_heavy(records);
  } else if (kind == "flow") {
    made = bench::flow_heavy(records);
  } else if (kind.size() == 6 && (all || kind.starts_with("base-")) &&
             test::all_tags().find(kind[5]) != std::string_view::npos) {
    made = bench::one_type(kind[5], records, all, blocks);
  } else {
    return usage();
  }

  const std::string dir = argv[3];
  if (!made.write(dir)) {
    std::fprintf(stderr, "make_trace: cannot write to %s\n", dir.c_str());
    return 2;
  }
  std::printf("%s/%s: %zu records, %zu bytes\n", dir.c_str(), made.header_name().c_str(),
              made.record_count(), made.data().size());
}
