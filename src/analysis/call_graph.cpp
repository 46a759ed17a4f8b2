#include "analysis/call_graph.h"

#include <iostream>

#include "analysis/kiv_object.h"
#include "analysis/kiv_object_db.h"
#include "analysis/kiv_process.h"
#include "analysis/kiv_symbol.h"
#include "reader/kiv_reader.h"

namespace kiv {

const std::string& Func_loc::get_obj_name(kiv_reader* reader) const {
  if (function_number < 1) return KivProcess::internal_name();
  return reader->objects().get_object(object_id)->name;
}

std::uint32_t Func_rel::update_child(Func_rel* callee, KivProcess& process) {
  const auto [entry, is_new] = callee_arcs_.try_emplace(callee, 0);
  if (is_new) {
    entry->second = process.add_arc(this, callee);
  } else {
    ++callee->calls;
  }
  process.count_call(entry->second);
  return entry->second;
}

void Func_rel::add_symbol(KivSymbol* symbol) {
  if (!symbol->has_category()) {
    std::cerr << "sym with no category\"" + symbol->name + "\"\n";
    return;
  }
  symbols_[static_cast<std::size_t>(symbol->category - 1)].push_back(symbol);
}

void Func_rel::forget_calls() {
  callee_arcs_.clear();
  for (auto& list : symbols_) list.clear();
}

}  // namespace kiv
