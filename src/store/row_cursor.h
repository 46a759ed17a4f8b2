#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kiv::store {

enum class value_type { null, integer, real, text, blob };

// The rows that answer a question, one after another.
class row_cursor {
 public:
  row_cursor() = default;
  virtual ~row_cursor() = default;
  row_cursor(const row_cursor&) = delete;
  row_cursor& operator=(const row_cursor&) = delete;

  virtual int columns() const = 0;
  virtual std::string_view name(int column) const = 0;

  // Goes to the first or next row. False after the last one, or when reading failed.
  virtual bool step() = 0;
  virtual bool failed() const = 0;
  virtual std::string error() const = 0;  // why reading failed

  // Of the present row; texts are valid until the next step.
  virtual value_type type(int column) const = 0;
  virtual std::int64_t integer(int column) const = 0;
  virtual double real(int column) const = 0;
  virtual std::string_view text(int column) const = 0;
};

}  // namespace kiv::store
