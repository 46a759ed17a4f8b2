#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "trace/file_source.h"

namespace kiv::test {

// Gives of another source's files no byte more than was asked for, each time in memory of their
// own: who looks behind them, or at those of an earlier call, is caught by the sanitizers or reads
// something else.
class sparing_files : public file_source {
 public:
  // `files` must outlive this.
  explicit sparing_files(file_source& files) : files_(files) {}

  std::optional<std::int64_t> open(const std::string& path) override { return files_.open(path); }
  std::span<const unsigned char> bytes(std::size_t from, std::size_t least) override {
    const auto all = files_.bytes(from, least);
    const auto part = all.first(std::min(least, all.size()));
    std::vector<unsigned char> copy(part.begin(), part.end());
    std::ranges::fill(given_, std::uint8_t{0xa5});
    given_ = std::move(copy);
    return given_;
  }

 private:
  file_source& files_;
  std::vector<unsigned char> given_;
};

}  // namespace kiv::test
