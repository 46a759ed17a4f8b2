#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <string>

#include "events/kiv_event.h"

namespace kiv {

class KivSymbolNew final : public KivEvent {
 public:
  explicit KivSymbolNew(kiv_reader* reader) : KivEvent(kiv_e_symbol_new_sym, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::int64_t sym = 0;
  std::int32_t symnr = 0;
  std::int32_t sym_type = 0;
};

// A symbol gets its storage.
class KivSymbolAlloc final : public KivMeasurement {
 public:
  explicit KivSymbolAlloc(kiv_reader* reader) : KivMeasurement(kiv_e_symbol_alloc, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;
  std::ostream& dumpinfo(std::ostream& os) const override { return os; }

  std::int64_t sym = 0;
  std::uint32_t flags = 0;
  std::uint32_t size = 0;
  std::string name;
};

class KivSymbolDims final : public KivEvent {
 public:
  explicit KivSymbolDims(kiv_reader* reader) : KivEvent(kiv_e_symbol_dims, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::int64_t sym = 0;
  std::uint32_t nrdims = 0;
  std::array<std::uint32_t, 4> dims{};
};

// The data dictionary's name of a symbol's type.
class KivSymbolDdName final : public KivEvent {
 public:
  explicit KivSymbolDdName(kiv_reader* reader) : KivEvent(kiv_e_symbol_dd_name, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::int64_t sym = 0;
  std::string dd_name;
};

}  // namespace kiv
