#pragma once

#include <map>
#include <string>
#include <string_view>

namespace kiv {

// Names and numbers the CSV files of a run. Numbers are kept per short name ("memory"), whatever
// the run id, and run on across all traces of the run.
class csv_file_sequence {
 public:
  explicit csv_file_sequence(const std::string& extension) : extension_(extension) {}

  // The number in use for `name`, after raising it when `increment` is set. A new name gets 1
  // either way.
  int curr_sequence(const std::string& name, bool increment);
  // File name with the current or the next number.
  std::string get_sequence(const std::string& name, const std::string& runid);
  std::string next_sequence(const std::string& name, const std::string& runid);
  // "kiv." run id "." name "." number "." extension
  std::string generate_file_name(const std::string& name, const std::string& runid,
                                 int number) const;

 private:
  std::string extension_;
  std::map<std::string, int> numbers_;
};

// The run id as it may stand in a file name and inside a quoted script text: '/', quotes and
// control bytes become '_', and at most 200 bytes are kept.
std::string safe_runid(std::string_view runid);

}  // namespace kiv
