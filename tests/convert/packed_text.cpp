#include "packed_text.h"

#include <zlib.h>
#include <zstd.h>

namespace kiv::test {

std::string zstd_of(std::string_view text) {
  constexpr int usual_level = 3;
  std::string packed(ZSTD_compressBound(text.size()), '\0');
  packed.resize(ZSTD_compress(packed.data(), packed.size(), text.data(), text.size(), usual_level));
  return packed;
}

std::string gzip_of(std::string_view text) {
  constexpr int gzip_window = 15 + 16, usual_memory = 8;
  z_stream stream{};
  deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, gzip_window, usual_memory,
               Z_DEFAULT_STRATEGY);
  std::string packed(deflateBound(&stream, text.size()), '\0'), input(text);
  stream.next_in = reinterpret_cast<unsigned char*>(input.data());
  stream.avail_in = static_cast<unsigned>(input.size());
  stream.next_out = reinterpret_cast<unsigned char*>(packed.data());
  stream.avail_out = static_cast<unsigned>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

}  // namespace kiv::test
