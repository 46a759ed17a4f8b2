#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

#include "trace/byte_order.h"

namespace kiv {

// Where we are in the bytes of one data file. No read looks outside those bytes: a number that is
// not wholly there keeps its value, a text ends with the file. Reads are bounded by the file, not
// by the record, so a decoder that went wrong shows by its position at the record's end.
//
// A window of the file is in memory. Where needs_bytes() says no, a whole record can be read as if
// all of the file were.
class record_cursor {
 public:
  record_cursor() = default;
  // At the start of a file of so many bytes, none of which is in memory.
  record_cursor(std::size_t size, bool little_endian)
      : size_(size), little_endian_(little_endian) {}

  bool at_end() const { return position_ >= size_; }
  bool needs_bytes() const { return position_ >= needed_at_; }
  std::size_t position() const { return start_ + position_; }  // bytes from the start of the file
  std::size_t left() const { return position_ < size_ ? size_ - position_ : 0; }
  // The file ends so many bytes behind the position.
  void end_after(std::size_t bytes) { size_ = position_ + bytes; }
  // Goes on in bytes of the file that begin at the position. `reach`: how many of them a record may
  // look at; they are more, or all that are left of the file.
  void go_on_in(std::span<const unsigned char> bytes, std::size_t reach) {
    start_ += position_;
    size_ -= position_;
    position_ = 0;
    bytes_ = bytes.data();
    held_ = std::min(bytes.size(), size_);
    needed_at_ = held_ == size_ ? size_ : held_ - reach;
  }

  // The tag byte and the payload size that open a record; needs record_start_fits().
  static constexpr std::size_t record_start_size = 3;
  static constexpr std::size_t max_size = 65535;  // of a payload
  bool record_start_fits() const { return left() >= record_start_size; }
  signed char read_tag() { return static_cast<signed char>(bytes_[position_++]); }
  std::uint32_t read_size() {
    const std::uint32_t size = load<std::uint16_t>(bytes_ + position_, little_endian_);
    position_ += 2;
    record_end_ = position_ + size;
    return size;
  }
  // The bytes in memory from the position on, and how to pass some of them.
  std::span<const unsigned char> ahead() const { return {bytes_ + position_, held_ - position_}; }
  void pass(std::size_t bytes) { position_ += bytes; }
  bool little_endian() const { return little_endian_; }

  bool payload_fits() const { return record_end_ <= size_; }
  bool at_record_end() const { return position_ == record_end_; }
  void go_to_record_end() { position_ = record_end_; }
  void go_to_end() { position_ = size_; }

  // Reads a number of `width` bytes. Widths that the target does not take, and numbers that the
  // file does not wholly hold, leave the value unchanged; the position moves on all the same. The
  // target's signedness decides how two and four bytes are widened. A single byte is widened to 32
  // bits with its sign, then to 64 without: 0xff reads as 4294967295 into all but a 32-bit signed.
  template <std::integral T>
  void read(std::uint32_t width, T& value) {
    static_assert(sizeof(T) == 4 || sizeof(T) == 8);
    if (width == sizeof(T) && sizeof(T) <= left()) [[likely]] {
      value = load_as<T, std::make_unsigned_t<T>>(bytes_ + position_);
      position_ += sizeof(T);
    } else {
      read_other_width(width, value);
    }
  }
  // Reads neighbouring numbers, if each is as wide as its value and the file holds them all; else
  // reads nothing and returns false.
  template <std::integral... T>
  bool read_all(const std::uint32_t* widths, T&... values) {
    constexpr std::size_t size = (sizeof(T) + ...);
    if (left() < size || !((*widths++ == sizeof(T)) && ...)) return false;
    const unsigned char* from = bytes_ + position_;
    ((values = load_as<T, std::make_unsigned_t<T>>(from), from += sizeof(T)), ...);
    position_ += size;
    return true;
  }

  // The characters up to the next NUL, which is passed too; looks into the file's bytes. A text
  // longer than any payload is cut off: bytes without NULs must not cost a file's length per
  // record.
  std::string_view read_text() {
    if (left() == 0) {
      position_ = size_ + 1;
      return {};
    }
    const unsigned char* start = bytes_ + position_;
    const std::size_t searched = std::min(left(), max_text);
    const void* nul = std::memchr(start, 0, searched);
    const std::size_t length =
        nul == nullptr ? searched
                       : static_cast<std::size_t>(static_cast<const unsigned char*>(nul) - start);
    position_ += length + 1;
    return {reinterpret_cast<const char*>(start), length};
  }

  static constexpr std::size_t max_text = 65536;  // reaches behind the end of every record

 private:
  // Out of line: nearly all fields are as wide as what they are read into.
  template <std::integral T>
  [[gnu::noinline]] void read_other_width(std::uint32_t width, T& value) {
    const unsigned char* from = take(width);
    if (from == nullptr) return;
    switch (width) {
      case 1:
        value = static_cast<T>(static_cast<std::uint32_t>(static_cast<signed char>(*from)));
        break;
      case 2:
        value = static_cast<T>(load_as<T, std::uint16_t>(from));
        break;
      case 4:
        value = static_cast<T>(load_as<T, std::uint32_t>(from));
        break;
      default:
        break;
    }
  }

  // Below 0 when the position is behind the end.
  std::int64_t signed_left() const {
    return static_cast<std::int64_t>(size_) - static_cast<std::int64_t>(position_);
  }

  // The bytes of a number, or null when it has none or the file ends before them. A read across
  // the end leaves the position one byte behind it, which no record's end is.
  const unsigned char* take(std::uint32_t width) {
    if (width == 0) return nullptr;
    if (width > signed_left()) {
      position_ = size_ + 1;
      return nullptr;
    }
    const unsigned char* from = bytes_ + position_;
    position_ += width;
    return from;
  }

  // A number as wide as Raw and signed as T is.
  template <class T, class Raw>
  auto load_as(const unsigned char* from) const {
    using number = std::conditional_t<std::is_signed_v<T>, std::make_signed_t<Raw>, Raw>;
    return static_cast<number>(load<Raw>(from, little_endian_));
  }

  // All but `start_` count from the window's start.
  const unsigned char* bytes_ = nullptr;
  std::size_t position_ = 0;
  std::size_t record_end_ = 0;
  std::size_t size_ = 0;       // the file's end
  std::size_t held_ = 0;       // the window's end
  std::size_t needed_at_ = 0;  // from here on the window may hold too little, or the file ends
  std::size_t start_ = 0;      // of the window in the file
  bool little_endian_ = true;
};

}  // namespace kiv
