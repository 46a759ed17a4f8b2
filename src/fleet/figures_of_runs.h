#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kiv::fleet {

// The value at place floor(n * percent / 100), counted from 0 and at most n - 1, of n ascending
// values; 0 when there are none.
std::uint64_t quantile(std::span<const std::uint64_t> ascending, std::uint64_t percent);

// Peak and leaks of some runs.
class figures_of_runs {
 public:
  void add(std::uint64_t peak, std::uint64_t leaked, bool complete);
  void finish();  // before it is asked

  std::uint64_t runs() const { return peaks_.size(); }
  std::uint64_t incomplete() const { return incomplete_; }
  std::uint64_t peak(std::uint64_t percent) const { return quantile(peaks_, percent); }
  std::uint64_t leaked(std::uint64_t percent) const { return quantile(leaks_, percent); }

 private:
  std::vector<std::uint64_t> peaks_, leaks_;
  std::uint64_t incomplete_ = 0;
};

}  // namespace kiv::fleet
