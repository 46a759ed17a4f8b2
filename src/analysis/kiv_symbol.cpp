#include "analysis/kiv_symbol.h"

#include <fmt/format.h>

#include "events/symbol_events.h"

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

std::string generated_name(std::int32_t category, std::int32_t symnr) {
  if (symnr < 0) return "<no_symnr:cannot happen>";
  switch (symbol_category{category}) {
    case symbol_category::argument:
      return fmt::format("arg<{}>", symnr);
    case symbol_category::local:
      return fmt::format("local<{}>", symnr);
    case symbol_category::external:
      return fmt::format("global<{}>", symnr);
    case symbol_category::dynamic:
      return "dynamic";
  }
  return {};
}

}  // namespace

KivSymbol::KivSymbol(const KivSymbolNew& event)
    : sym(event.sym), category(event.sym_type), symnr(event.symnr) {}

void KivSymbol::allocate(const KivSymbolAlloc& event, std::uint32_t flow) {
  flags = event.flags;
  size = event.size;
  name = event.name.empty() ? generated_name(category, symnr) : event.name;
  flow_number = flow;
}

void KivSymbol::set_dims(const KivSymbolDims& event) {
  nrdims = event.nrdims;
  dims = event.dims;
}

std::string_view KivSymbol::category_tag() const {
  switch (symbol_category{category}) {
    case symbol_category::argument:
      return "arg ";
    case symbol_category::local:
      return "loc ";
    case symbol_category::external:
      return (flags & flag_global) != 0 ? "glob" : "ext ";
    case symbol_category::dynamic:
      return "dyn ";
  }
  return {};
}

void KivSymbol::print(csv_row& row) const {
  const auto has = [this](symbol_flag flag) { return (flags & flag) != 0; };
  if (has(flag_common)) {
    row.raw("common ");
  } else if (has(flag_extern)) {
    row.raw("extern ");
  }
  if (has(flag_combined)) row.raw("combined ");
  if (has(flag_domain)) {
    row.raw("domain ").raw(dd_name).raw(' ');
  } else {
    row.raw(word_of_type(flags));
  }
  row.raw(name);
  if (nrdims == 0) {
    row.raw(' ');
  } else {
    row.raw('(');
    for (std::uint32_t i = 0; nrdims <= dims.size() && i < nrdims; ++i) {
      if (i > 0) row.raw(',');
      row.raw_number(dims[i]);
    }
    row.raw(") ");
  }
  if (has(flag_based)) row.raw("based ");
  if (has(flag_fixed)) row.raw("fixed ");
  if (has(flag_mb)) row.raw("mb ");
}

std::ostream& KivSymbol::dumpinfo(std::ostream& os) const {
  csv_row row(os);
  print(row);
  row.end_part_as_is();
  return os;
}

}  // namespace kiv
