#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kiv {

struct KivSymbolAlloc;
struct KivSymbolDdName;
struct KivSymbolDims;
struct KivSymbolNew;

enum class symbol_category : std::int32_t { local = 1, argument = 2, external = 3, dynamic = 4 };

// A variable of interpreted code.
class KivSymbol {
 public:
  explicit KivSymbol(const KivSymbolNew& event);

  void allocate(const KivSymbolAlloc& event, std::uint32_t flow);
  void set_dims(const KivSymbolDims& event);

  bool has_category() const { return category >= 1 && category <= 4; }

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

}  // namespace kiv
