#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kiv::convert {

// The code that a recording names, with the numbers that its trace gives to it: modules as objects,
// functions, places in sources. Numbers count from 1, as those of the recording do; 0 is none.
//
// An index that names nothing yet is a fault of the recording: what has it is not added.
class recorded_code {
 public:
  recorded_code() { object_of(0); }

  static constexpr std::uint32_t unknown_object = 1;

  struct function {
    std::uint32_t object = 0;
    std::int32_t number = 0;  // within its object
    std::string name;
  };

  void add_string(std::string_view text) { strings_.emplace_back(text); }
  std::size_t strings() const { return strings_.size(); }

  struct frame {
    std::uint64_t function = 0, file = 0, line = 0;  // indexes of strings; 0 when not known
  };
  // An instruction: its module, and the functions that it belongs to by inlining, innermost first.
  // Each instruction has a frame, of which nothing may be known. False when an index is wrong.
  bool add_instruction(std::uint64_t address, std::uint64_t module,
                       const std::vector<frame>& frames);
  // Takes the number for an instruction that cannot be read.
  void add_unknown_instruction() { add_instruction(0, 0, {{}}); }
  std::size_t instructions() const { return instructions_.size(); }

  struct instruction {
    std::uint32_t first_function = 0, functions = 0;  // in functions_of(), innermost first
    std::uint32_t location = 0;                       // of the innermost
    std::uint32_t object = unknown_object;
    bool is_operator_new = false;
  };
  const instruction& at(std::uint64_t index) const { return instructions_[index - 1]; }
  std::uint32_t function_of(const instruction& one, std::uint32_t inlining) const {
    return functions_of_[one.first_function + inlining];
  }

  const function& function_at(std::uint32_t index) const { return functions_[index - 1]; }
  std::size_t functions() const { return functions_.size(); }
  // "file:line", or "module:function" where the file is not known.
  const std::string& location_at(std::uint32_t index) const { return locations_[index - 1]; }
  std::size_t locations() const { return locations_.size(); }
  // The module's file name, with its directories when another module has the same name.
  const std::string& object_at(std::uint32_t index) const { return objects_[index - 1]; }
  std::size_t objects() const { return objects_.size(); }

 private:
  std::uint32_t object_of(std::uint64_t module);
  std::uint32_t find_or_add_function(std::uint32_t object, std::string_view name);
  std::uint32_t find_or_add_location(const std::string& text);
  std::string_view string_at(std::uint64_t index) const { return strings_[index - 1]; }

  std::deque<std::string> strings_;
  std::vector<instruction> instructions_;
  std::vector<std::uint32_t> functions_of_;
  std::deque<function> functions_;
  std::deque<std::string> locations_;
  std::deque<std::string> objects_;
  std::vector<std::int32_t> functions_in_;  // by object
  absl::flat_hash_map<std::uint64_t, std::uint32_t> object_of_module_;
  absl::flat_hash_map<std::string, std::uint32_t> object_of_name_;
  absl::flat_hash_map<std::pair<std::uint32_t, std::string>, std::uint32_t> function_numbers_;
  absl::flat_hash_map<std::string, std::uint32_t> location_numbers_;
};

}  // namespace kiv::convert
