#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace kiv::test {

// Takes what is written to a standard stream while it lives.
class captured {
 public:
  explicit captured(std::ostream& stream) : stream_(stream), before_(stream.rdbuf(text_.rdbuf())) {}
  ~captured() { stream_.rdbuf(before_); }
  captured(const captured&) = delete;
  captured& operator=(const captured&) = delete;

  std::string text() const { return text_.str(); }

 private:
  std::ostream& stream_;
  std::ostringstream text_;
  std::streambuf* before_;
};

}  // namespace kiv::test
