#pragma once

#include <zlib.h>

#include <iosfwd>
#include <streambuf>
#include <vector>

namespace kiv::exports {

// What is written into it comes out of another stream compressed by gzip; the same bytes for the
// same input. Writing fails once the other stream has failed.
class gzip_buffer : public std::streambuf {
 public:
  explicit gzip_buffer(std::ostream& out);
  ~gzip_buffer() override;
  gzip_buffer(const gzip_buffer&) = delete;
  gzip_buffer& operator=(const gzip_buffer&) = delete;

  // Puts out what is left. To be called once, after the last write.
  void finish();

 protected:
  int_type overflow(int_type next) override;

 private:
  bool compress(int flush);

  std::ostream& out_;
  std::vector<char> in_, packed_;
  z_stream state_{};
};

}  // namespace kiv::exports
