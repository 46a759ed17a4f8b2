#include "events/symbol_events.h"

#include "events/event_fields.h"

namespace kiv {

void KivSymbolNew::setelems() { readelems(sym, symnr, sym_type); }

void KivSymbolAlloc::setelems() {
  readelems(sym, flags, size);
  readelem(name);
}

void KivSymbolDims::setelems() {
  readelems(sym, nrdims);
  for (std::uint32_t& dim : dims) readelem(dim);
}

void KivSymbolDdName::setelems() {
  readelem(sym);
  readelem(dd_name);
}

}  // namespace kiv
