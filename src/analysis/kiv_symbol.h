#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "output/csv_row.h"

namespace kiv {

class KivSymbolAlloc;
class KivSymbolDims;
class KivSymbolNew;

enum class symbol_category : std::int32_t { local = 1, argument = 2, external = 3, dynamic = 4 };

// A variable of interpreted code.
class KivSymbol {
 public:
  explicit KivSymbol(const KivSymbolNew& event);

  void allocate(const KivSymbolAlloc& event, std::uint32_t flow);
  void set_dims(const KivSymbolDims& event);

  bool has_category() const { return category >= 1 && category <= 4; }
  // "arg ", "loc ", "glob", "ext ", "dyn ", or nothing.
  std::string_view category_tag() const;

  // The symbol as a declaration; columns of it have no separators.
  void print(csv_row& row) const;
  std::ostream& dumpinfo(std::ostream& os) const;

  std::int64_t sym;  // its key in the trace
  std::uint32_t flags = 0;
  std::int32_t category;
  std::uint32_t size = 0;  // bytes of its storage
  std::string name;
  std::string dd_name;  // the data dictionary's name of its type
  std::int32_t symnr;
  std::uint32_t nrdims = 0;             // 0 for a scalar
  std::array<std::uint32_t, 4> dims{};  // no more than four are ever shown
  std::uint32_t flow_number = 0;        // the process's flow counter at its allocation
};

inline std::ostream& operator<<(std::ostream& os, const KivSymbol& symbol) {
  return symbol.dumpinfo(os);
}

}  // namespace kiv
