#pragma once

#include <iostream>
#include <streambuf>

namespace kiv::fuzz {

// While it lives, what is written to the standard streams is formatted and dropped.
class quiet_streams {
 public:
  quiet_streams() : out_(std::cout.rdbuf(&nowhere_)), err_(std::cerr.rdbuf(&nowhere_)) {}
  ~quiet_streams() {
    std::cout.rdbuf(out_);
    std::cerr.rdbuf(err_);
  }
  quiet_streams(const quiet_streams&) = delete;
  quiet_streams& operator=(const quiet_streams&) = delete;

 private:
  class dropping : public std::streambuf {
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char* /*text*/, std::streamsize count) override { return count; }
  };
  dropping nowhere_;
  std::streambuf* out_;
  std::streambuf* err_;
};

}  // namespace kiv::fuzz
