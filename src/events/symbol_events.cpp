#include "events/symbol_events.h"

#include "events/event_fields.h"

namespace kiv {

void KivSymbolNew::setelems() {
  readelem(sym);
  readelem(symnr);
  readelem(sym_type);
}

void KivSymbolAlloc::setelems() {
  readelem(sym);
  readelem(flags);
  readelem(size);
  readelem(name);
}

void KivSymbolDims::setelems() {
  readelem(sym);
  readelem(nrdims);
  for (std::uint32_t& dim : dims) readelem(dim);
}

void KivSymbolDdName::setelems() {
  readelem(sym);
  readelem(dd_name);
}

}  // namespace kiv
