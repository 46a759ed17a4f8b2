#include "export/gzip_buffer.h"

#include <new>
#include <ostream>

namespace kiv::exports {
namespace {

constexpr std::size_t buffer_size = 65'536;
constexpr int with_gzip_header = 16;
constexpr int usual_memory = 8;

}  // namespace

gzip_buffer::gzip_buffer(std::ostream& out) : out_(out), in_(buffer_size), packed_(buffer_size) {
  if (deflateInit2(&state_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + with_gzip_header,
                   usual_memory, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
  setp(in_.data(), in_.data() + in_.size());
}

gzip_buffer::~gzip_buffer() { deflateEnd(&state_); }

void gzip_buffer::finish() { compress(Z_FINISH); }

gzip_buffer::int_type gzip_buffer::overflow(int_type next) {
  if (!compress(Z_NO_FLUSH)) return traits_type::eof();
  if (traits_type::eq_int_type(next, traits_type::eof())) return traits_type::not_eof(next);
  return sputc(traits_type::to_char_type(next));
}

bool gzip_buffer::compress(int flush) {
  state_.next_in = reinterpret_cast<Bytef*>(pbase());
  state_.avail_in = static_cast<uInt>(pptr() - pbase());
  do {
    state_.next_out = reinterpret_cast<Bytef*>(packed_.data());
    state_.avail_out = static_cast<uInt>(packed_.size());
    deflate(&state_, flush);
    out_.write(packed_.data(), static_cast<std::streamsize>(packed_.size() - state_.avail_out));
  } while (state_.avail_out == 0);
  setp(in_.data(), in_.data() + in_.size());
  return out_.good();
}

}  // namespace kiv::exports
