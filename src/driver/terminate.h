#pragma once

namespace kiv {

// For std::set_terminate: an exception that nobody catches (exhausted memory, say) ends the program
// here, after the rows written so far are on disk.
[[noreturn]] void kiv_terminate_handler();

}  // namespace kiv
