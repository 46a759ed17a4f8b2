// Whole traces: any bytes as the records of a trace, replayed in a private directory.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "driver/process_file.h"
#include "output/csv_file_sequence.h"
#include "output/sql_script.h"
#include "quiet.h"
#include "settings.h"
#include "trace_input.h"

namespace kiv::fuzz {
namespace {

namespace fs = std::filesystem;

class scratch_directory {
 public:
  scratch_directory() {
    const bool in_memory = fs::is_directory("/dev/shm");
    path_ = (in_memory ? fs::path("/dev/shm") : fs::temp_directory_path()) / "kiv_fuzz_XXXXXX";
    if (mkdtemp(path_.data()) == nullptr) std::abort();
  }
  ~scratch_directory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  scratch_directory(const scratch_directory&) = delete;
  scratch_directory& operator=(const scratch_directory&) = delete;

  const std::string& path() const { return path_; }
  std::string write(const char* name, std::string_view bytes) const {
    std::string path = path_ + "/" + name;
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    return path;
  }

 private:
  std::string path_;
};

void replay(const trace_input& input) {
  static const scratch_directory directory;
  const std::size_t cut = input.two_files ? input.records.size() / 2 : input.records.size();
  const std::string first = directory.write("first.kivdat", input.records.substr(0, cut));
  const std::string second = directory.write("second.kivdat", input.records.substr(cut));
  directory.write("trace.kivhdr", input.header(first, second));

  counters = {};
  debug_level = input.listed ? 2 : 0;
  csv_file_sequence sequence("csv");
  sql_script script("sql");
  constexpr int small = 2000, unlimited = 1 << 30;
  const int result = process_file(&sequence, &script, directory.path().c_str(), "trace.kivhdr", "",
                                  true, input.small_files ? small : unlimited);
  if (result != 0) std::abort();
}

}  // namespace
}  // namespace kiv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
  static const kiv::fuzz::quiet_streams quiet;
  kiv::fuzz::replay(kiv::fuzz::trace_input::from({reinterpret_cast<const char*>(bytes), size}));
  return 0;
}
