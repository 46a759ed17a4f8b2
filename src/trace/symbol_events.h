#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <tuple>

#include "trace/kiv_type.h"

namespace kiv {

struct KivSymbolNew {
  static constexpr kiv_type type = kiv_e_symbol_new_sym;
  auto numbers() { return std::tie(sym, symnr, sym_type); }

  std::int64_t sym = 0;
  std::int32_t symnr = 0;
  std::int32_t sym_type = 0;
};

// A symbol gets its storage.
struct KivSymbolAlloc {
  static constexpr kiv_type type = kiv_e_symbol_alloc;
  auto numbers() { return std::tie(sym, flags, size); }
  auto& text() { return name; }

  std::int64_t sym = 0;
  std::uint32_t flags = 0;
  std::uint32_t size = 0;
  std::string_view name;
};

struct KivSymbolDims {
  static constexpr kiv_type type = kiv_e_symbol_dims;
  auto numbers() { return std::tie(sym, nrdims, dims[0], dims[1], dims[2], dims[3]); }

  std::int64_t sym = 0;
  std::uint32_t nrdims = 0;
  std::array<std::uint32_t, 4> dims{};
};

// The data dictionary's name of a symbol's type.
struct KivSymbolDdName {
  static constexpr kiv_type type = kiv_e_symbol_dd_name;
  auto numbers() { return std::tie(sym); }
  auto& text() { return dd_name; }

  std::int64_t sym = 0;
  std::string_view dd_name;
};

}  // namespace kiv
