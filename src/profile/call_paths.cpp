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
  const Func_context* const bottom = stack.data();
  const Func_context* const top = bottom + stack.size();
  const Func_context* entry = top;
  while (entry != bottom && entry[-1].path == 0) --entry;
  std::uint32_t path = entry == bottom ? 0 : entry[-1].path - 1;
  for (; entry != top; ++entry) {
    if (entry->function != nullptr) path = step_into(path, *entry->function);
    entry->path = path + 1;
  }
  return path;
}

inline std::uint32_t call_paths::step_into(std::uint32_t parent, const Func_rel& function) {
  const std::uint32_t place =
      function.observed_as != 0 ? function.observed_as - 1 : number_function(function);
  const node* const nodes = nodes_.data();
  for (std::uint32_t path = nodes[parent].first_child; path != 0; path = nodes[path].next) {
    if (nodes[path].function == place) return path;
  }
  return find_or_add(parent, place);
}

// For a path that is not in its caller's list.
std::uint32_t call_paths::find_or_add(std::uint32_t parent, std::uint32_t function) {
  if (nodes_[parent].followed == max_followed) {
    const auto entry = index_.find({parent, function});
    if (entry != index_.end()) return entry->second;
  }
  if (nodes_.size() < max_paths) return add(parent, function);
  ++calls_left_out_;
  return parent;
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
std::uint32_t call_paths::number_function(const Func_rel& function) {
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
