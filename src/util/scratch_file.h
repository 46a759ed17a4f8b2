#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kiv {

// Bytes set aside on disk: a file without a name in the system's folder for such files, which is
// gone with this. They are appended, then read from the beginning.
class scratch_file {
 public:
  scratch_file() = default;
  ~scratch_file();
  scratch_file(const scratch_file&) = delete;
  scratch_file& operator=(const scratch_file&) = delete;

  // False when there is no room for all of it; then none of it is kept.
  bool append(std::string_view bytes);
  // The next bytes, as many as there are up to `most`; false when reading fails.
  bool read(std::string& into, std::size_t most);

 private:
  bool open();

  int fd_ = -1;
  std::uint64_t size_ = 0;
  std::uint64_t read_ = 0;
};

}  // namespace kiv
