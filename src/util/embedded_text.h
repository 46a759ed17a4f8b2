#pragma once

#include <span>
#include <string_view>

namespace kiv {

// A file of the source tree that is part of the program.
struct embedded_text {
  std::string_view name;  // of the file, without its extension
  std::string_view text;
};

}  // namespace kiv
