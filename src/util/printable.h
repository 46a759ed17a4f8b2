#pragma once

#include <string>
#include <string_view>

namespace kiv {

// The text with every control byte and every byte that is not valid UTF-8 replaced by '?', so that
// it can be shown on a terminal.
std::string printable(std::string_view text);

// The first byte sequence of `text`: its length when it is valid UTF-8, else 0.
std::size_t utf8_length(std::string_view text);

// A name in a message: printable, in single quotes.
std::string quoted_name(std::string_view name);

}  // namespace kiv
