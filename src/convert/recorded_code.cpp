#include "convert/recorded_code.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace kiv::convert {
namespace {

// Who calls these allocates; the recorder's own evaluation leaves them out too.
constexpr std::array<std::string_view, 4> operators_new = {
    "operator new(unsigned long)", "operator new[](unsigned long)", "operator new(unsigned int)",
    "operator new[](unsigned int)"};

constexpr const char* unknown_module = "(unknown module)";

}  // namespace

std::uint32_t recorded_code::object_of(std::uint64_t module) {
  const auto [known, is_new] = object_of_module_.try_emplace(module, 0);
  if (!is_new) return known->second;
  const std::string path(module == 0 ? std::string_view(unknown_module) : string_at(module));
  std::string name = path.substr(path.rfind('/') + 1);
  if (name.empty() || object_of_name_.contains(name)) name = path;
  const auto [named, name_is_new] =
      object_of_name_.try_emplace(name, static_cast<std::uint32_t>(objects_.size() + 1));
  if (name_is_new) {
    objects_.push_back(name);
    functions_in_.push_back(0);
  }
  return object_of_module_[module] = named->second;
}

std::uint32_t recorded_code::find_or_add_function(std::uint32_t object, std::string_view name) {
  const auto [known, is_new] = function_numbers_.try_emplace(
      {object, std::string(name)}, static_cast<std::uint32_t>(functions_.size() + 1));
  if (is_new) functions_.push_back({object, ++functions_in_[object - 1], std::string(name)});
  return known->second;
}

std::uint32_t recorded_code::find_or_add_location(const std::string& text) {
  const auto [known, is_new] =
      location_numbers_.try_emplace(text, static_cast<std::uint32_t>(locations_.size() + 1));
  if (is_new) locations_.push_back(known->first);
  return known->second;
}

bool recorded_code::add_instruction(std::uint64_t address, std::uint64_t module,
                                    const std::vector<frame>& frames) {
  const auto names_something = [&](std::uint64_t index) { return index <= strings_.size(); };
  const bool sound = names_something(module) && std::ranges::all_of(frames, [&](const frame& one) {
                       return names_something(one.function) && names_something(one.file);
                     });
  if (!sound) return false;

  instruction made;
  made.first_function = static_cast<std::uint32_t>(functions_of_.size());
  made.functions = static_cast<std::uint32_t>(frames.size());
  const std::uint32_t object = object_of(module);
  made.object = object;
  for (const frame& one : frames) {
    functions_of_.push_back(
        find_or_add_function(object, one.function == 0 ? fmt::format("0x{:x}", address)
                                                       : std::string(string_at(one.function))));
  }
  const frame& innermost = frames.front();
  const std::string& name = function_at(functions_of_[made.first_function]).name;
  made.location = find_or_add_location(
      innermost.file == 0 ? fmt::format("{}:{}", object_at(object), name)
                          : fmt::format("{}:{}", string_at(innermost.file), innermost.line));
  made.is_operator_new = std::ranges::find(operators_new, name) != operators_new.end();
  instructions_.push_back(made);
  return true;
}

}  // namespace kiv::convert
