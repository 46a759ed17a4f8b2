#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::test {

// A JSON value, read strictly: a test fails at once when the text is no JSON or no valid UTF-8, or
// when a key comes twice. Access to what is not there gives an empty value.
struct json_value {
  enum class kind { null, boolean, number, text, array, object };
  kind is = kind::null;
  std::string scalar;  // of a text its bytes, of a number or boolean as it is written
  std::vector<json_value> elements;
  std::vector<std::string> keys;  // of an object, for its elements

  const json_value& operator[](std::size_t index) const;
  const json_value& operator[](std::string_view key) const;
  long long number() const { return scalar.empty() ? 0 : std::stoll(scalar); }
  std::size_t size() const { return elements.size(); }
};

json_value read_json(std::string_view text);

}  // namespace kiv::test
