#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "trace/byte_order.h"
#include "trace/record_layout.h"

namespace kiv {

// Bytes in memory to which records are appended number by number.
class record_bytes {
 public:
  static constexpr std::size_t max_payload = 65535;
  static constexpr std::size_t max_record = 3 + max_payload;

  explicit record_bytes(bool little_endian) : little_endian_(little_endian) {}

  // What was written so far; whoever takes it may clear it between records.
  std::string& bytes() { return bytes_; }
  const std::string& bytes() const { return bytes_; }
  void use_big_endian() { little_endian_ = false; }  // from the next record on

  void begin(char tag) {
    bytes_ += tag;
    bytes_.append(2, '\0');
    payload_ = bytes_.size();
  }
  // The number, cut to its width in bytes; bytes beyond the eighth are 0.
  void put_number(std::uint64_t value, std::uint32_t width) {
    for (std::uint32_t i = 0; i < width; ++i) {
      const std::uint32_t byte = little_endian_ ? i : width - 1 - i;
      bytes_ += byte < 8 ? static_cast<char>(value >> (8 * byte) & 0xff) : '\0';
    }
  }
  // The text up to its first NUL, and no more than a record can hold.
  void put_text(std::string_view text) {
    const std::size_t room = max_payload - std::min(max_payload - 1, payload_size()) - 1;
    bytes_.append(text.substr(0, std::min(text.find('\0'), room))) += '\0';
  }
  std::size_t payload_size() const { return bytes_.size() - payload_; }
  void end() { end(static_cast<std::uint16_t>(payload_size())); }
  // `size`: what the record says of its payload.
  void end(std::uint16_t size) {
    store_number(reinterpret_cast<unsigned char*>(&bytes_[payload_ - 2]), size, little_endian_);
  }

 protected:
  // Appends a whole record of numbers that are as wide as their fields.
  template <std::integral... T>
  void put_record(char tag, T... values) {
    constexpr std::size_t size = (std::size_t{0} + ... + sizeof(T));
    std::array<char, 3 + size> record;
    record[0] = tag;
    auto* to = reinterpret_cast<unsigned char*>(record.data()) + 1;
    store_number(to, static_cast<std::uint16_t>(size), little_endian_);
    to += 2;
    ((store_number(to, static_cast<std::make_unsigned_t<T>>(values), little_endian_),
      to += sizeof(T)),
     ...);
    bytes_.append(record.data(), record.size());
  }

 private:
  std::string bytes_;
  std::size_t payload_ = 0;  // where that of the last record begins
  bool little_endian_;
};

// Writes events as records: the counterpart of decode().
class record_encoder : public record_bytes {
 public:
  record_encoder(const record_layout& layout, bool little_endian);

  template <class Event>
  void write(Event event) {
    static_assert(fields_of<Event>() == fields_of(record_type_of(Event::type)));
    constexpr bool has_text = requires { event.text(); };
    std::apply(
        [&](const auto&... number) {
          if constexpr (!has_text) {
            if (has_full_widths_[Event::type])
              return put_record(static_cast<char>(Event::type), number...);
          }
          begin(static_cast<char>(Event::type));
          [[maybe_unused]] const std::uint32_t* width = layout_.widths(Event::type);
          (put_number(widened(number), *width++), ...);
          if constexpr (has_text) put_text(event.text());
          end();
        },
        event.numbers());
  }

 private:
  // A type's fields as the letters of the table: how wide numbers are, and whether a text follows.
  struct field_count {
    std::size_t numbers = 0, wide_numbers = 0, texts = 0;
    bool operator==(const field_count&) const = default;
  };
  template <class Event>
  static consteval field_count fields_of() {
    using numbers = decltype(std::declval<Event&>().numbers());
    field_count count;
    count.numbers = std::tuple_size_v<numbers>;
    [&]<std::size_t... I>(std::index_sequence<I...>) {
      ((count.wide_numbers += sizeof(std::tuple_element_t<I, numbers>) == 8), ...);
    }
    (std::make_index_sequence<std::tuple_size_v<numbers>>());
    count.texts = requires(Event & event) { event.text(); };
    return count;
  }
  static consteval field_count fields_of(const record_type& type) {
    field_count count;
    for_each_field(type.fields, [&](std::string_view, char kind) {
      ++(kind == 's' ? count.texts : count.numbers);
      count.wide_numbers += kind == 'p';
    });
    return count;
  }

  static std::uint64_t widened(std::integral auto number) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(number));
  }

  record_layout layout_;
  // The types of which every number is as wide as its member in the event.
  std::array<bool, kiv_type_limit> has_full_widths_{};
};

}  // namespace kiv
