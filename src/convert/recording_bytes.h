#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace kiv::convert {

// The bytes of a file, unpacked when it is packed with zstd or gzip, as a stream.
class recording_bytes {
 public:
  virtual ~recording_bytes() = default;

  // Up to `most` bytes to `to`; 0 at the end, and where nothing more can be read.
  virtual std::size_t read(char* to, std::size_t most) = 0;

  // How many bytes of the file were taken so far.
  virtual std::uint64_t taken() const = 0;
  // Why the end came before the end of what was packed; empty when it did not.
  virtual const std::string& fault() const = 0;
};

// Opens the bytes of a recording from their start. Null, with `error` set, when it cannot.
using recording_source = std::function<std::unique_ptr<recording_bytes>(std::string& error)>;

// Null, with `error` set, when there is no regular file that can be read.
std::unique_ptr<recording_bytes> open_recording(const std::string& path, std::string& error);

}  // namespace kiv::convert
