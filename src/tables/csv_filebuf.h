#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kiv {

class csv_filebuf;
class diagnostics;

// The output files that are open, so that what they hold can be saved when all else fails.
class open_files {
 public:
  open_files() = default;
  open_files(const open_files&) = delete;
  open_files& operator=(const open_files&) = delete;

  // Puts the pending bytes of every open file on disk: the last thing to do before an abort.
  void flush_all();

 private:
  friend csv_filebuf;
  csv_filebuf* first_ = nullptr;
};

// A buffered output file that knows its write position without asking the system. The first failed
// write is remembered, later bytes are dropped, and close() says so.
class csv_filebuf {
 public:
  csv_filebuf(open_files& files, diagnostics& faults) : files_(files), diagnostics_(faults) {}
  ~csv_filebuf() { close(); }
  csv_filebuf(const csv_filebuf&) = delete;
  csv_filebuf& operator=(const csv_filebuf&) = delete;

  // Creates or truncates the file, or opens it for appending (created when missing). False when
  // that fails. Closes the file that was open before.
  bool open(const std::string& path, bool create);
  // Writes what is pending and closes. False, and it is said, when any byte since open() could not
  // be written.
  bool close();
  bool is_open() const { return fd_ >= 0; }

  // Where the next byte goes, in bytes from the start of the file; -1 when no file is open.
  std::int64_t position() const { return flushed_ + (next_ - begin_); }

  // Bytes written to no file are dropped.
  void write(std::string_view text);

  // A place for up to `bytes` bytes, to be written there by hand; null when the file has none. They
  // count from add() on, which follows before any other write.
  char* claim(std::size_t bytes) { return bytes < room() ? next_ : claim_anew(bytes); }
  void add(std::size_t bytes) { next_ += bytes; }

 private:
  friend open_files;

  // A trace keeps ten to eighteen files open, most of them with few rows; beyond this size writing
  // gets no faster.
  static constexpr std::size_t capacity = std::size_t{64} * 1024;

  std::size_t room() const { return static_cast<std::size_t>(end_ - next_); }
  bool flush();
  bool write_out(const char* bytes, std::size_t count);
  char* claim_anew(std::size_t bytes);
  bool make_room();
  void link();
  void unlink();

  open_files& files_;
  diagnostics& diagnostics_;
  std::unique_ptr<char[]> buffer_;  // allocated with the first byte
  char* begin_ = nullptr;
  char* next_ = nullptr;
  char* end_ = nullptr;
  std::int64_t flushed_ = -1;  // size at opening and bytes handed to the system since
  int fd_ = -1;
  bool failed_ = false;
  std::string path_;
  csv_filebuf* next_open_ = nullptr;
  csv_filebuf* previous_open_ = nullptr;
};

}  // namespace kiv
