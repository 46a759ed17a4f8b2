#include "convert/raw_recording.h"

#include <string_view>

namespace kiv::convert {

char raw_recording::next(std::uint64_t& size, std::uint64_t& address) {
  std::string_view line;
  while (lines_.next(line)) {
    const char what = line.empty() ? ' ' : line.front();
    line_fields fields(line.substr(line.empty() ? 0 : 1));
    std::uint64_t stack = 0;
    if (what == '+' && fields.take(size) && fields.take(stack) && fields.take(address)) return what;
    if (what == '-' && fields.take(address) && block_at_.contains(address)) return what;
  }
  at_end_ = true;
  return 0;
}

bool raw_recording::add(std::uint64_t size, std::uint32_t block) {
  std::uint64_t told_size = 0, address = 0;
  if (next(told_size, address) != '+' || told_size != size) return false;
  block_at_[address] = block;
  return true;
}

bool raw_recording::remove(std::uint32_t& block) {
  std::uint64_t size = 0, address = 0;
  if (next(size, address) != '-') return false;
  const auto known = block_at_.find(address);
  block = known->second;
  block_at_.erase(known);
  return true;
}

}  // namespace kiv::convert
