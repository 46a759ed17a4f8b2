#pragma once

namespace kiv {

class open_files;

// For std::set_terminate: an exception that nobody catches (exhausted memory, say) ends the program
// here, after the rows written so far are on disk.
[[noreturn]] void kiv_terminate_handler();

// While it lives, the terminate handler saves these files. There is one at a time.
class saved_on_termination {
 public:
  explicit saved_on_termination(open_files& files);
  ~saved_on_termination();
  saved_on_termination(const saved_on_termination&) = delete;
  saved_on_termination& operator=(const saved_on_termination&) = delete;
};

}  // namespace kiv
