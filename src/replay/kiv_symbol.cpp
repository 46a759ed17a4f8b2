#include "replay/kiv_symbol.h"

#include <fmt/format.h>

#include "trace/symbol_events.h"

namespace kiv {

namespace {

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
  name = event.name.empty() ? generated_name(category, symnr) : std::string(event.name);
  flow_number = flow;
}

void KivSymbol::set_dims(const KivSymbolDims& event) {
  nrdims = event.nrdims;
  dims = event.dims;
}

}  // namespace kiv
