#include "tables/symbol_text.h"

#include <array>
#include <cstdint>

#include "replay/kiv_symbol.h"

namespace kiv {

namespace {

enum symbol_flag : std::uint32_t {
  flag_fixed = 0x20,
  flag_domain = 0x40,
  flag_extern = 0x100,
  flag_based = 0x200,
  flag_common = 0x400,
  flag_combined = 0x800,
  flag_mb = 0x4000,
  flag_global = 0x100000,
};

constexpr std::uint32_t type_mask = 0x18007;

struct type_word {
  std::uint32_t type;
  std::string_view word;
};

constexpr std::array type_words = {
    type_word{1, "long "},       type_word{2, "double "},        type_word{4, "string "},
    type_word{0x8001, "table "}, type_word{0x10001, "boolean "},
};

std::string_view word_of_type(std::uint32_t flags) {
  for (const type_word& known : type_words) {
    if ((flags & type_mask) == known.type) return known.word;
  }
  return {};
}

}  // namespace

std::string_view category_tag(const KivSymbol& symbol) {
  switch (symbol_category{symbol.category}) {
    case symbol_category::argument:
      return "arg ";
    case symbol_category::local:
      return "loc ";
    case symbol_category::external:
      return (symbol.flags & flag_global) != 0 ? "glob" : "ext ";
    case symbol_category::dynamic:
      return "dyn ";
  }
  return {};
}

void put_declaration(csv_row& row, const KivSymbol& symbol) {
  const auto has = [&](symbol_flag flag) { return (symbol.flags & flag) != 0; };
  if (has(flag_common)) {
    row.raw("common ");
  } else if (has(flag_extern)) {
    row.raw("extern ");
  }
  if (has(flag_combined)) row.raw("combined ");
  if (has(flag_domain)) {
    row.raw("domain ").raw(symbol.dd_name).raw(' ');
  } else {
    row.raw(word_of_type(symbol.flags));
  }
  row.raw(symbol.name);
  if (symbol.nrdims == 0) {
    row.raw(' ');
  } else {
    row.raw('(');
    for (std::uint32_t i = 0; symbol.nrdims <= symbol.dims.size() && i < symbol.nrdims; ++i) {
      if (i > 0) row.raw(',');
      row.raw_number(symbol.dims[i]);
    }
    row.raw(") ");
  }
  if (has(flag_based)) row.raw("based ");
  if (has(flag_fixed)) row.raw("fixed ");
  if (has(flag_mb)) row.raw("mb ");
}

}  // namespace kiv
