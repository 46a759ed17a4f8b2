#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <utility>

#include "profile/profile.h"

namespace kiv::store {

// Reads values of a profile as they were stored, one after another, from a source whose `number()`
// and `text()` give the next of theirs. `fits` becomes false when a value cannot hold its number.
template <class Source>
class value_reader {
 public:
  value_reader(Source source, bool& fits) : source_(std::move(source)), fits_(fits) {}

  void operator()(auto&... values) { (read(values), ...); }

 private:
  void read(std::string& text) { text = source_.text(); }
  void read(bool& value) { value = source_.number() != 0; }
  void read(distribution& value) {
    const std::int64_t number = source_.number();
    fits_ = fits_ && (number == 0 || number == 1);
    value = number == 0 ? distribution::size : distribution::lifetime;
  }
  template <std::integral T>
  void read(T& value) {
    const std::int64_t number = source_.number();
    // Counters that went below zero are stored modulo 2^64.
    if constexpr (sizeof(T) < sizeof number) fits_ = fits_ && std::in_range<T>(number);
    value = static_cast<T>(number);
  }

  Source source_;
  bool& fits_;
};

}  // namespace kiv::store
