#pragma once

#include <string>
#include <string_view>

namespace kiv::report {

// The text with every control byte and every byte that is not valid UTF-8 replaced by '?', so that
// it can be shown on a terminal.
std::string printable(std::string_view text);

// A name in a message: printable, in single quotes.
std::string quoted_name(std::string_view name);

// The first byte sequence of `text`: its length when it is valid UTF-8, else 0.
std::size_t utf8_length(std::string_view text);

// Columns that a printable text takes, counting one per character.
std::size_t display_width(std::string_view text);

// A printable text cut in the middle to so many columns, an ellipsis where something was cut: of
// long names the beginning and the end tell them apart.
std::string shortened(std::string_view text, std::size_t width);

}  // namespace kiv::report
