#include "convert/traced_code.h"

#include <string>

#include "convert/size_classes.h"
#include "trace/code_events.h"
#include "trace/id_events.h"

namespace kiv::convert {
void traced_code::announce() {
  for (std::uint32_t object = 1; object <= code_.objects(); ++object) announce_object(object);
  find_calls();
  for (std::uint32_t i = 1; i <= code_.functions(); ++i) {
    const recorded_code::function& one = code_.function_at(i);
    KivObjectFunctionLoad announced;
    announced.id_of_obj = one.object;
    announced.funnr = one.number;
    announced.funcname = one.name;
    trace_.write(announced);
  }
}

void traced_code::announce_object(std::uint32_t object) {
  const std::string text = "oic:" + code_.object_at(object);
  KivReserveId id;
  id.id = object;
  id.nr_colors = static_cast<std::uint32_t>(size_classes.size());
  id.reserve_type = text;
  trace_.write(id);
  for (std::uint32_t i = 0; i < size_classes.size(); ++i) {
    trace_.write(KivReserveIdColors{i, size_classes.at(i).name});
  }
  trace_.write(KivObjectLoad{object});
  trace_.write(KivObjectLink{pid_, object});
}

void traced_code::use_location(std::uint32_t location) {
  if (location == 0) return;
  if (location >= location_used_.size()) location_used_.resize(code_.locations() + 1);
  if (location_used_[location]) return;
  location_used_[location] = true;
  trace_.write(KivHashLoc{location, code_.location_at(location)});
}

void traced_code::find_calls() {
  calls_.resize(stacks_.paths());
  for (std::uint32_t i = 1; i < calls_.size(); ++i) {
    const recorded_stacks::path& path = stacks_.path_at(i);
    const recorded_code::function& callee = code_.function_at(path.function);
    calls_[i] = {pid_, 0, callee.object, callee.number};
    if (path.parent != 0) {
      calls_[i].parent_id = calls_[path.parent].child_id;
      calls_[i].parent_funnr = calls_[path.parent].child_funnr;
    }
  }
}

void traced_code::change_path(std::uint32_t path) {
  to_enter_.clear();
  std::uint32_t common = path;
  while (stacks_.path_at(common).depth > stacks_.path_at(current_).depth) {
    to_enter_.push_back(common);
    common = stacks_.path_at(common).parent;
  }
  while (current_ != common) {
    trace_.write(KivFlowOut{});
    const bool as_deep = stacks_.path_at(current_).depth == stacks_.path_at(common).depth;
    current_ = stacks_.path_at(current_).parent;
    if (!as_deep) continue;
    to_enter_.push_back(common);
    common = stacks_.path_at(common).parent;
  }
  for (auto next = to_enter_.rbegin(); next != to_enter_.rend(); ++next)
    trace_.write(calls_[*next]);
  current_ = path;
}

}  // namespace kiv::convert
