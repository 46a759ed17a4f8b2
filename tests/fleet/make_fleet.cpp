// Stores a generated fleet: make_fleet RUNS TARGET [LINES PATHS]

#include <charconv>
#include <cstring>
#include <iostream>

#include "generated_fleet.h"
#include "kivdb/open_runs.h"

namespace {

// 0 when it is no number.
std::size_t number(const char* text) {
  std::size_t value = 0;
  const char* end = text + std::strlen(text);
  const auto [stop, failure] = std::from_chars(text, end, value);
  return failure == std::errc() && stop == end ? value : 0;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kiv;
  test::fleet_shape shape{argc > 1 ? number(argv[1]) : 0, 40, 8, 40};
  if (argc == 5) {
    shape.lines = number(argv[3]);
    shape.paths = number(argv[4]);
  }
  if ((argc != 3 && argc != 5) || shape.runs == 0 || shape.lines < 2 || shape.paths == 0) {
    std::cerr << "Usage: make_fleet RUNS TARGET [LINES PATHS]\n";
    return 1;
  }
  std::string error;
  const auto target = db::open_target(argv[2], db::target_use::import, error);
  for (std::size_t n = 0; target && n < shape.runs; ++n) {
    const auto made = test::generate_run(shape, n);
    const auto result = target->save(made.profile, {"generated", made.labels}, error);
    if (result == store::save_result::saved || result == store::save_result::replaced) continue;
    std::cerr << argv[2] << ": " << made.profile.name << ": " << error << '\n';
    return 2;
  }
  if (!target) std::cerr << argv[2] << ": " << error << '\n';
  return target ? 0 : 2;
}
