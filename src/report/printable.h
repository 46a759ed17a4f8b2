#pragma once

#include <string>
#include <string_view>

#include "util/printable.h"

namespace kiv::report {

// Columns that a printable text takes, counting one per character.
std::size_t display_width(std::string_view text);

// A printable text cut in the middle to so many columns, an ellipsis where something was cut: of
// long names the beginning and the end tell them apart.
std::string shortened(std::string_view text, std::size_t width);

}  // namespace kiv::report
