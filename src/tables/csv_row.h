#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <string_view>

#include "tables/csv_file.h"
#include "util/decimal.h"
#include "util/put_text.h"

namespace kiv {

// One line of a CSV table under construction, the one place where numbers become text. Columns are
// collected where the file's own buffer has the place for them, else in a buffer of the row's,
// which is handed to the file once per line (more often only if the line outgrows it). Every column
// is followed by data_sep; end_line() turns the last separator into the line end. While a row lives
// nobody else writes to its file.
class csv_row {
 public:
  static constexpr std::size_t capacity = 2048;

  explicit csv_row(csv_file& file)
      : file_(file.get_stream()), separator_(file.data_sep()), fun_sep_(file.fun_sep()) {
    if (char* place = file_.claim(capacity)) write_at(place);
  }
  csv_row(const csv_row&) = delete;
  csv_row& operator=(const csv_row&) = delete;
  ~csv_row() { assert(next_ == buffer_ && "a row must be ended"); }

  // Neighbouring numbers, checked for room together.
  template <std::integral... T>
  csv_row& cols(T... numbers) {
    reserve(sizeof...(T) * number_room);
    next_ = put_columns(next_, separator_, numbers...);
    return *this;
  }
  // Up to `count` numbers that `put` writes: it gets the place and the separator that goes behind
  // each, and returns the end.
  template <class Put>
  csv_row& cols_by(std::size_t count, Put put) {
    reserve(count * number_room);
    next_ = put(next_, separator_);
    return *this;
  }
  template <std::integral T>
  csv_row& col(T number) {
    return cols(number);
  }
  csv_row& col(char letter) { return raw(letter).raw(separator_); }
  csv_row& col(std::string_view text) {
    if (text.size() >= room()) return raw(text).raw(separator_);
    char* const end = put_text(next_, text);
    *end = separator_;
    next_ = end + 1;
    return *this;
  }
  csv_row& col(const char* text) { return col(std::string_view(text)); }

  // One column of an object and a function number, joined by fun_sep.
  template <std::integral Object, std::integral Function>
  csv_row& col_pair(Object object, Function function) {
    reserve(number_room);
    next_ = put_decimal(next_, object);
    *next_++ = fun_sep_;
    return col(function);
  }

  // Text without a separator behind it.
  csv_row& raw(std::string_view text) {
    if (text.size() > room()) {
      flush();
      if (text.size() > room()) {
        file_.write(text);
        return *this;
      }
    }
    next_ = put_text(next_, text);
    return *this;
  }
  csv_row& raw(char letter) {
    if (room() < 1) spill();
    *next_++ = letter;
    return *this;
  }
  template <std::integral T>
  csv_row& raw_number(T number) {
    reserve(number_room);
    next_ = put_decimal(next_, number);
    return *this;
  }

  // How much of the line is in the buffer, and the part behind a place in it; nothing once the line
  // has outgrown the buffer.
  std::size_t length() const { return static_cast<std::size_t>(next_ - buffer_); }
  std::string_view text_from(std::size_t place) const {
    return whole_ ? std::string_view(buffer_ + place, length() - place) : std::string_view();
  }

  // Ends the line behind the last column, or with one more of a single letter.
  void end_line() {
    drop_separator();
    end_text();
  }
  void end_line(char last_column) {
    next_[0] = last_column;
    next_[1] = '\n';
    end_at(next_ + 2);
  }
  // Ends the line as it stands, for lines that end with a text.
  void end_text() {
    *next_ = '\n';
    end_at(next_ + 1);
  }

 private:
  // Two bytes are always left: for the letter and the line end that end a line, a separator behind
  // a text, or a spilled line's last separator.
  std::size_t room() const { return static_cast<std::size_t>(full_ - next_); }
  void reserve(std::size_t bytes) {
    if (room() < bytes) spill();
  }
  void drop_separator() {
    assert(next_ != buffer_ && next_[-1] == separator_);
    --next_;
  }
  void write_at(char* place) {
    next_ = buffer_ = place;
    full_ = place + capacity - 2;
  }
  // What comes behind goes into the buffer of the row's own.
  void end_at(char* end) {
    const auto length = static_cast<std::size_t>(end - buffer_);
    if (buffer_ == own_) {
      file_.write({own_, length});
    } else {
      file_.add(length);
    }
    write_at(own_);
  }
  void flush() {
    end_at(next_);
    whole_ = false;
  }
  // Keeps the last character: it may be the separator that end_line() takes back.
  [[gnu::noinline]] void spill() {
    if (next_ == buffer_) return;
    const char last = next_[-1];
    --next_;
    flush();
    *next_++ = last;
  }

  char own_[capacity];  // NOLINT(modernize-avoid-c-arrays): uninitialised until columns come
  csv_filebuf& file_;
  const char separator_;
  const char fun_sep_;
  char* buffer_ = own_;  // where the line is collected
  char* next_ = own_;
  char* full_ = own_ + capacity - 2;  // where next_ may be at most
  bool whole_ = true;                 // the buffer holds all of the line so far
};

}  // namespace kiv
