#pragma once

#include <string>
#include <string_view>

namespace kiv::exports {

// The text on one line, for tools that print what they read: line ends and tabs become blanks,
// other control bytes and bytes that are not valid UTF-8 become '?'.
std::string one_line(std::string_view text);

}  // namespace kiv::exports
