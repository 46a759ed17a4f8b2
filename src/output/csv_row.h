#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <ostream>
#include <string_view>

#include "output/csv_file.h"
#include "output/decimal.h"
#include "output/put_text.h"
#include "settings.h"

namespace kiv {

// One line of a CSV table under construction, the one place where numbers become text. Columns are
// collected in a buffer and handed to the stream once per line (more often only if the line
// outgrows the buffer); a row of a table's file is written where the file's own buffer has the
// place for it. Every column is followed by data_sep; end_line() turns the last separator into the
// line end. While a row lives nobody else writes to its stream.
template <std::size_t capacity>
class basic_csv_row {
  static_assert(capacity >= number_room + 3);  // a number and what spill() keeps

 public:
  explicit basic_csv_row(std::ostream& os) : os_(os), separator_(data_sep) {}
  explicit basic_csv_row(csv_file& file) : basic_csv_row(file.get_stream()) {
    file_ = &file.buffer();
    if (char* place = file_->claim(capacity)) write_at(place);
  }
  basic_csv_row(const basic_csv_row&) = delete;
  basic_csv_row& operator=(const basic_csv_row&) = delete;
  ~basic_csv_row() { assert(next_ == buffer_ && "a row must be ended"); }

  // Neighbouring numbers, checked for room together.
  template <std::integral... T>
  basic_csv_row& cols(T... numbers) {
    reserve(sizeof...(T) * number_room);
    next_ = put_columns(next_, separator_, numbers...);
    return *this;
  }
  // The columns of neighbouring counters, likewise.
  template <class... Counter>
  basic_csv_row& counters(const Counter&... counter) {
    reserve((Counter::column_count + ...) * number_room);
    char* out = next_;
    ((out = counter.put(out, separator_)), ...);
    next_ = out;
    return *this;
  }
  template <std::integral T>
  basic_csv_row& col(T number) {
    return cols(number);
  }
  basic_csv_row& col(char letter) { return raw(letter).raw(separator_); }
  basic_csv_row& col(std::string_view text) {
    if (text.size() >= room()) return raw(text).raw(separator_);
    char* const end = put_text(next_, text);
    *end = separator_;
    next_ = end + 1;
    return *this;
  }
  basic_csv_row& col(const char* text) { return col(std::string_view(text)); }

  // One column of an object and a function number, joined by fun_sep.
  template <std::integral Object, std::integral Function>
  basic_csv_row& col_pair(Object object, Function function) {
    reserve(number_room);
    next_ = put_decimal(next_, object);
    *next_++ = fun_sep;
    return col(function);
  }

  // Text without a separator behind it.
  basic_csv_row& raw(std::string_view text) {
    if (text.size() > room()) {
      flush();
      if (text.size() > room()) {
        hand_over(text.data(), text.size());
        return *this;
      }
    }
    next_ = put_text(next_, text);
    return *this;
  }
  basic_csv_row& raw(char letter) {
    if (room() < 1) spill();
    *next_++ = letter;
    return *this;
  }
  template <std::integral T>
  basic_csv_row& raw_number(T number) {
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
  // Hands over what there is without a line end; end_part() takes the last separator back.
  void end_part_as_is() { flush(); }
  void end_part() {
    drop_separator();
    flush();
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
      hand_over(own_, length);
    } else {
      file_->add(length);
    }
    write_at(own_);
  }
  void flush() {
    end_at(next_);
    whole_ = false;
  }
  // Straight to the buffer: a sentry per row would cost more than the row's shorter columns.
  void hand_over(const char* text, std::size_t length) {
    const auto count = static_cast<std::streamsize>(length);
    if (os_.rdbuf()->sputn(text, count) != count) os_.setstate(std::ios::badbit);
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
  std::ostream& os_;
  csv_filebuf* file_ = nullptr;
  const char separator_;
  char* buffer_ = own_;  // where the line is collected
  char* next_ = own_;
  char* full_ = own_ + capacity - 2;  // where next_ may be at most
  bool whole_ = true;                 // the buffer holds all of the line so far
};

using csv_row = basic_csv_row<2048>;

// Writes the columns of anything that has some, without a line end.
template <class T>
std::ostream& dump_columns(const T& item, std::ostream& os) {
  csv_row row(os);
  item.columns(row);
  row.end_part();
  return os;
}

}  // namespace kiv
