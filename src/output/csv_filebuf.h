#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <streambuf>
#include <string>

namespace kiv {

// Stream buffer for an output file that knows its write position without asking the system. The
// first failed write is remembered, later bytes are dropped, and close() reports the file.
class csv_filebuf : public std::streambuf {
 public:
  csv_filebuf() = default;
  ~csv_filebuf() override;
  csv_filebuf(const csv_filebuf&) = delete;
  csv_filebuf& operator=(const csv_filebuf&) = delete;

  // Creates or truncates the file, or opens it for appending (created when missing). False when
  // that fails. Closes the file that was open before.
  bool open(const std::string& path, bool create);
  // Writes what is pending and closes. False, with a line on the error stream, when any byte since
  // open() could not be written.
  bool close();
  bool is_open() const { return fd_ >= 0; }

  // Where the next byte goes, in bytes from the start of the file; -1 when no file is open.
  std::int64_t position() const { return flushed_ + (pptr() - pbase()); }

  // A place for up to `bytes` bytes, to be written there by hand; null when the file has none. They
  // count from add() on, which follows before any other write.
  char* claim(std::size_t bytes) {
    return bytes < static_cast<std::size_t>(epptr() - pptr()) ? pptr() : claim_anew(bytes);
  }
  void add(std::size_t bytes) { pbump(static_cast<int>(bytes)); }

  // Puts the pending bytes of every open buffer on disk: the last thing to do before an abort.
  static void flush_all();

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override;

 private:
  // A trace keeps ten to eighteen files open, most of them with few rows; beyond this size writing
  // gets no faster.
  static constexpr std::size_t capacity = std::size_t{64} * 1024;

  bool flush();
  bool write_out(const char* bytes, std::size_t count);
  bool put_slowly(const char* text, std::size_t count);
  char* claim_anew(std::size_t bytes);
  bool make_room();
  void link();
  void unlink();

  static csv_filebuf* first_open_;

  std::unique_ptr<char[]> buffer_;  // allocated with the first byte
  std::int64_t flushed_ = -1;       // size at opening and bytes handed to the system since
  int fd_ = -1;
  bool failed_ = false;
  std::string path_;
  csv_filebuf* next_open_ = nullptr;
  csv_filebuf* previous_open_ = nullptr;
};

}  // namespace kiv
