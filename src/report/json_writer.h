#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::report {

// How a document is laid out: for people, with blanks and line breaks; or to stand in a page,
// without any, and with nothing in it that ends a script or begins a tag.
enum class json_form : std::uint8_t { readable, in_page };

// A JSON string with its quotes, valid UTF-8 whatever the bytes of `text`: control bytes are
// escaped, bytes that are not valid UTF-8 become U+FFFD.
std::string json_text(std::string_view text, json_form form = json_form::readable);

// Writes one JSON document, piece by piece, with commas and line breaks where they belong. Calls
// must nest as the document does.
class json_writer {
 public:
  explicit json_writer(std::ostream& out, json_form form = json_form::readable)
      : out_(out), form_(form) {}

  void begin_object() { open('{'); }
  void end_object() { close('}'); }
  void begin_array() { open('['); }
  void end_array() { close(']'); }
  void key(std::string_view name);

  void text(std::string_view value);
  void number(std::uint64_t value);
  void number(std::int64_t value);
  void number(double value);  // a finite one
  void boolean(bool value);
  void null();
  void end_document();  // the last line end

 private:
  struct level {
    char kind;  // of the closing bracket
    bool empty = true;
    bool broken = false;  // its elements stand on lines of their own
  };
  void open(char bracket);
  void close(char bracket);
  void before_value(bool is_object);
  void break_line();

  std::ostream& out_;
  json_form form_;
  std::vector<level> levels_;
  bool after_key_ = false;
};

}  // namespace kiv::report
