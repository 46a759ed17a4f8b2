#include "analysis/call_graph.h"

#include "analysis/kiv_object.h"
#include "analysis/kiv_object_db.h"
#include "analysis/kiv_process.h"
#include "reader/kiv_reader.h"

namespace kiv {

const std::string& Func_loc::get_obj_name(kiv_reader* reader) const {
  if (function_number < 1) return KivProcess::internal_name();
  return reader->objects().get_object(object_id)->name;
}

std::uint32_t Func_rel::update_child(Func_rel* callee, KivProcess& process) {
  const auto [arc, is_new] = process.find_or_add_arc(this, callee);
  if (!is_new) ++callee->calls;
  process.count_call(arc);
  return arc;
}

}  // namespace kiv
