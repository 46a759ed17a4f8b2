#include "report/json_reader.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "util/printable.h"

namespace kiv::test {
namespace {

class reader {
 public:
  explicit reader(std::string_view text) : text_(text) {}

  json_value document() {
    json_value value = next();
    skip_space();
    EXPECT_EQ(at_, text_.size()) << "text after the document";
    return value;
  }

 private:
  void skip_space() {
    while (at_ < text_.size() && std::string_view(" \n\t\r").find(text_[at_]) != text_.npos) ++at_;
  }
  char peek() {
    skip_space();
    return at_ < text_.size() ? text_[at_] : '\0';
  }
  void expect(char c) {
    if (peek() != c) {
      ADD_FAILURE() << "no " << c << " at byte " << at_ << ": " << text_.substr(at_, 40);
      at_ = text_.size();
      return;
    }
    ++at_;
  }

  std::string string() {
    expect('"');
    std::string value;
    while (at_ < text_.size() && text_[at_] != '"') {
      const std::size_t length = utf8_length(text_.substr(at_));
      EXPECT_GT(length, 0u) << "no UTF-8 at byte " << at_;
      EXPECT_GE(static_cast<unsigned char>(text_[at_]), 0x20) << "a bare control byte";
      if (text_[at_] == '\\') {
        const char escaped = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
        at_ += 2;
        if (escaped == 'u') {
          value += static_cast<char>(std::stoi(std::string(text_.substr(at_, 4)), nullptr, 16));
          at_ += 4;
        } else {
          EXPECT_TRUE(escaped == '"' || escaped == '\\') << escaped;
          value += escaped;
        }
        continue;
      }
      value += text_.substr(at_, std::max<std::size_t>(length, 1));
      at_ += std::max<std::size_t>(length, 1);
    }
    expect('"');
    return value;
  }

  json_value next() {
    json_value value;
    const char first = peek();
    if (first == '{' || first == '[') {
      const char last = first == '{' ? '}' : ']';
      value.is = first == '{' ? json_value::kind::object : json_value::kind::array;
      expect(first);
      while (peek() != last && at_ < text_.size()) {
        if (!value.elements.empty()) expect(',');
        if (first == '{') {
          value.keys.push_back(string());
          expect(':');
          EXPECT_EQ(std::ranges::count(value.keys, value.keys.back()), 1) << value.keys.back();
        }
        value.elements.push_back(next());
      }
      expect(last);
    } else if (first == '"') {
      value.is = json_value::kind::text;
      value.scalar = string();
    } else {
      while (at_ < text_.size() && std::string_view(",]} \n").find(text_[at_]) == text_.npos) {
        value.scalar += text_[at_++];
      }
      const bool boolean = value.scalar == "true" || value.scalar == "false";
      value.is = value.scalar == "null" ? json_value::kind::null
                 : boolean              ? json_value::kind::boolean
                                        : json_value::kind::number;
      if (value.is == json_value::kind::number) {
        EXPECT_EQ(value.scalar.find_first_not_of("-0123456789.e+"), std::string::npos)
            << value.scalar;
        EXPECT_FALSE(value.scalar.empty());
      }
    }
    return value;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

const json_value nothing;

}  // namespace

const json_value& json_value::operator[](std::size_t index) const {
  return index < elements.size() ? elements[index] : nothing;
}

const json_value& json_value::operator[](std::string_view key) const {
  const auto at = std::ranges::find(keys, key);
  return at == keys.end() ? nothing : elements[static_cast<std::size_t>(at - keys.begin())];
}

json_value read_json(std::string_view text) { return reader(text).document(); }

}  // namespace kiv::test
