#include "profile/call_paths.h"

#include <utility>

#include "replay/kiv_object_db.h"
#include "replay/kiv_process.h"
#include "replay/kiv_reader.h"

namespace kiv {

namespace {

constexpr const char* process_itself = "(process internal)";
constexpr const char* without_name = "(unknown function)";

}  // namespace

call_paths::call_paths(const kiv_reader& reader) : reader_(reader) {
  functions_.push_back({"", "(no function)"});
}

// An entry keeps its path plus one, since the empty path is a path too.
std::uint32_t call_paths::current(const KivProcess& process) {
  const std::vector<Func_context>& stack = process.stack();
  std::size_t known = stack.size();
  while (known > 0 && stack[known - 1].path == 0) --known;
  std::uint32_t path = known == 0 ? 0 : stack[known - 1].path - 1;
  for (std::size_t i = known; i < stack.size(); ++i) {
    if (stack[i].function != nullptr) path = step_into(path, *stack[i].function);
    stack[i].path = path + 1;
  }
  return path;
}

std::uint32_t call_paths::step_into(std::uint32_t parent, const Func_rel& function) {
  const std::uint32_t place = function_of(function);
  if (const std::uint32_t known = find(parent, place); known != 0) return known;
  if (nodes_.size() < max_paths) return add(parent, place);
  ++calls_left_out_;
  return parent;
}

std::uint32_t call_paths::find(std::uint32_t parent, std::uint32_t function) const {
  for (std::uint32_t path = nodes_[parent].first_child; path != 0; path = nodes_[path].next) {
    if (nodes_[path].function == function) return path;
  }
  if (nodes_[parent].followed < max_followed) return 0;
  const auto entry = index_.find({parent, function});
  return entry == index_.end() ? 0 : entry->second;
}

std::uint32_t call_paths::add(std::uint32_t parent, std::uint32_t function) {
  const auto path = static_cast<std::uint32_t>(nodes_.size());
  node& added = nodes_.emplace_back(node{.parent = parent, .function = function});
  node& caller = nodes_[parent];
  if (caller.followed < max_followed) {
    ++caller.followed;
    added.next = std::exchange(caller.first_child, path);
  } else {
    index_.emplace(std::pair(parent, function), path);
  }
  return path;
}

// What a number was given to keeps it plus one.
std::uint32_t call_paths::function_of(const Func_rel& function) {
  if (function.observed_as != 0) return function.observed_as - 1;
  const Func_loc* location = function.location;
  if (location == nullptr) {
    function.observed_as = find_or_add_function(nullptr) + 1;
  } else {
    if (location->observed_as == 0) location->observed_as = find_or_add_function(location) + 1;
    function.observed_as = location->observed_as;
  }
  return function.observed_as - 1;
}

// Functions are told apart by their names: places in the code do not outlive their process.
std::uint32_t call_paths::find_or_add_function(const Func_loc* location) {
  std::pair<std::string, std::string> name;
  if (location == nullptr) {
    name = {process_itself, without_name};
  } else if (location->in_object()) {
    name = {reader_.objects().get_object(location->object_id)->name, std::string(location->name)};
  } else {
    name = {process_itself, std::string(location->name)};
  }
  const auto next = static_cast<std::uint32_t>(functions_.size());
  const auto [entry, is_new] = function_index_.try_emplace(std::move(name), next);
  if (is_new) functions_.push_back({entry->first.first, entry->first.second});
  return entry->second;
}

void call_paths::finish(profile& into) {
  into.paths.reserve(nodes_.size());
  for (const node& path : nodes_) into.paths.push_back({path.parent, path.function});
  into.paths_differ = true;
  nodes_ = {};
  into.functions = std::move(functions_);
}

}  // namespace kiv
