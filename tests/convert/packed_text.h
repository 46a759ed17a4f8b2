#pragma once

#include <string>
#include <string_view>

namespace kiv::test {

// The text as a file packed by zstd, and by gzip.
std::string zstd_of(std::string_view text);
std::string gzip_of(std::string_view text);

}  // namespace kiv::test
