#include "replay/call_graph.h"

#include "replay/kiv_process.h"

namespace kiv {

std::uint32_t Func_rel::update_child(Func_rel* callee, KivProcess& process) {
  const auto [arc, is_new] = process.find_or_add_arc(this, callee);
  if (!is_new) ++callee->calls;
  process.count_call(arc);
  return arc;
}

}  // namespace kiv
