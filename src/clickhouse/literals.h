#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::clickhouse {

// A text as a literal of SQL, whatever bytes it has.
std::string text_literal(std::string_view text);

// A name of a database, table or cluster in SQL, in backquotes.
std::string quoted_identifier(std::string_view name);

// One row of tab-separated values after another, as the server reads them.
class tsv_writer {
 public:
  void add(std::int64_t number);
  void add(std::string_view text);
  void add_null();
  void add_ready(std::string_view fields);  // as another writer made them
  void add(const std::vector<std::int64_t>& numbers);
  void add(const std::vector<std::string_view>& texts);
  void end_row() {
    bytes_ += '\n';
    at_start_ = true;
  }

  const std::string& bytes() const { return bytes_; }
  // Whether there is enough for one insert.
  bool is_full() const { return bytes_.size() >= std::size_t{16} << 20; }
  std::string take();

 private:
  void begin_field() {
    if (!at_start_) bytes_ += '\t';
    at_start_ = false;
  }

  std::string bytes_;
  bool at_start_ = true;
};

// One value of a line of tab-separated values.
struct tsv_field {
  std::string_view text;  // valid as long as the line and the reader's present row
  std::string_view raw;   // with its escapes, for read_array
  bool is_null = false;
};

// Takes lines of tab-separated values apart.
class tsv_reader {
 public:
  // The line without its end. Values without a backslash are not copied.
  const std::vector<tsv_field>& read(std::string_view line);

 private:
  std::vector<tsv_field> fields_;
  std::string unescaped_;
};

// The members of an array as the server writes it: [1,2] or ['a','b']. Takes the raw text of a
// field. False when it is no such array.
bool read_array(std::string_view text, std::vector<std::int64_t>& numbers);
bool read_array(std::string_view text, std::vector<std::string>& texts);

// The text with the server's escapes undone.
void unescape(std::string_view text, std::string& into);

}  // namespace kiv::clickhouse
