#include "recording_text.h"

#include <fmt/format.h>

#include <algorithm>

namespace kiv::test {

recording::recording(int format) : format_(format) {
  const std::string version = fmt::format("v 10400 {}\n", format);
  constexpr std::string_view rest = "X /usr/bin/app --fast\nI 1000 40000\n";
  text_ = version + std::string(rest);
  raw_ = version + "x c /usr/bin/app\n" + std::string(rest);
}

recording::number recording::string(std::string_view text) {
  if (const auto known = strings_.find(text); known != strings_.end()) return known->second;
  const std::string size = format_ >= 3 ? fmt::format("{:x} ", text.size()) : "";
  text_ += fmt::format("s {}{}\n", size, text);
  return strings_[std::string(text)] = strings_.size() + 1;
}

recording::number recording::call(std::string_view module, const std::vector<frame>& inlined,
                                  number caller) {
  const number module_index = string(module);
  std::string places;
  for (const frame& one : inlined) {
    const number function = one.function.empty() ? 0 : string(one.function);
    const number file = one.file.empty() ? 0 : string(one.file);
    places += fmt::format(" {:x} {:x} {:x}", function, file, one.line);
  }
  text_ += fmt::format("i {:x} {:x}{}\n", 0xabc0 + instructions_, module_index, places);
  text_ += fmt::format("t {:x} {:x}\n", ++instructions_, caller);
  return ++stacks_;
}

recording::number recording::calls(std::initializer_list<std::string_view> functions) {
  number stack = 0;
  for (const std::string_view function : functions) {
    stack = call("/usr/bin/app", {{std::string(function)}}, stack);
  }
  return stack;
}

recording::number recording::allocation(std::uint64_t size, number stack) {
  text_ += fmt::format("a {:x} {:x}\n", size, stack);
  sizes_.push_back(size);
  return sizes_.size() - 1;
}

recording& recording::make(number allocation, std::uint64_t address) {
  raw_ += fmt::format("+ {:x} 1 {:x}\n", sizes_.at(allocation), address);
  return line(fmt::format("+ {:x}", allocation));
}

recording& recording::end(number allocation, std::uint64_t address) {
  raw_ += fmt::format("- {:x}\n", address);
  return line(fmt::format("- {:x}", allocation));
}

recording& recording::pass(number allocation, int times) {
  constexpr std::uint64_t passing = 0x9000;
  for (int i = 0; i < times; ++i) make(allocation, passing).end(allocation, passing);
  return *this;
}

recording& recording::time(std::uint64_t milliseconds) {
  return line(fmt::format("c {:x}", milliseconds));
}

recording& recording::resident(std::uint64_t pages) {
  resident_ = pages;
  return line(fmt::format("R {:x}", pages));
}

recording& recording::line(std::string_view text) {
  text_.append(text).append("\n");
  return *this;
}

std::size_t recording::lines() const {
  return static_cast<std::size_t>(std::ranges::count(text_, '\n'));
}

std::string recording::text() const {
  return text_ + fmt::format("R {:x}\n# strings: {}\n# ips: {}\n", resident_, strings_.size(),
                             instructions_);
}

}  // namespace kiv::test
