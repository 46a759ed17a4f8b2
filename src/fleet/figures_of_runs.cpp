#include "fleet/figures_of_runs.h"

#include <algorithm>

namespace kiv::fleet {

std::uint64_t quantile(std::span<const std::uint64_t> ascending, std::uint64_t percent) {
  if (ascending.empty()) return 0;
  const std::uint64_t size = ascending.size();
  return ascending[static_cast<std::size_t>(std::min(size * percent / 100, size - 1))];
}

void figures_of_runs::add(std::uint64_t peak, std::uint64_t leaked, bool complete) {
  peaks_.push_back(peak);
  leaks_.push_back(leaked);
  incomplete_ += complete ? 0 : 1;
}

void figures_of_runs::finish() {
  std::ranges::sort(peaks_);
  std::ranges::sort(leaks_);
}

}  // namespace kiv::fleet
